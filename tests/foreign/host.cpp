// A host of another compiler and another C++ ABI: drives two commands of the library given as the argument. It ends
// with the number of checks that failed.
#include "tests/foreign/objects.h"

namespace {

uint32_t failures = 0;

void check(bool holds, const char* what) {
  if (holds) return;
  ++failures;
  say("FAILED: ");
  say(what);
  say("\n");
}

bool same(const char* a, const char* b) {
  for (; *a != '\0' && *a == *b; ++a) ++b;
  return *a == *b;
}

struct Entry {
  const char* key;
  uint64_t value;
};
Entry store[] = {{"SelfFree_Decrypter", 0},
                 {"SelfFree_LoggerApi", 0},
                 {"SelfFree_ErrorApi", 0},
                 {"int_Allowed", 0},
                 {"int_Answer", 42}};

Entry* find(const char* key) {
  for (Entry& entry : store) {
    if (same(entry.key, key)) return &entry;
  }
  return nullptr;
}

template <class T>
T* get(const char* key) {
  return reinterpret_cast<T*>(static_cast<uintptr_t>(find(key)->value));
}
template <class T>
void put(const char* key, T* object) {
  find(key)->value = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(object));
}

/// AES-256 with the key 0, 1, 2, ... 31.
uintptr_t make_key() {
  uint8_t blob[12 + 32] = {8, 2, 0, 0, 0x10, 0x66, 0, 0, 32, 0, 0, 0};
  for (uint8_t i = 0; i < 32; ++i) blob[12 + i] = i;
  uintptr_t provider = 0, key = 0;
  constexpr uint32_t rsa_aes = 24, verify_context = 0xF0000000;
  check(CryptAcquireContextW(&provider, nullptr, nullptr, rsa_aes, verify_context) != 0, "a provider");
  check(CryptImportKey(provider, blob, sizeof blob, 0, 0, &key) != 0, "a key");
  return key;
}

/// Room for one ciphered value.
struct Ciphered {
  wchar_t text[64];
};

/// "_" and the URL-safe base64 of the enciphered text, whose length is below one block.
const wchar_t* cipher(uintptr_t key, const char* text, Ciphered& out) {
  constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  uint8_t bytes[18] = {};
  uint32_t size = 0;
  for (; text[size] != '\0'; ++size) bytes[size] = static_cast<uint8_t>(text[size]);
  check(CryptEncrypt(key, 0, 1, 0, bytes, &size, sizeof bytes) != 0 && size == 16, "one block");
  wchar_t* at = out.text;
  *at++ = L'_';
  for (uint32_t i = 0; i < 18; i += 3) {
    const uint32_t group = (uint32_t{bytes[i]} << 16) | (uint32_t{bytes[i + 1]} << 8) | bytes[i + 2];
    for (uint32_t shift = 24; shift != 0; shift -= 6) *at++ = static_cast<wchar_t>(digits[(group >> (shift - 6)) & 63]);
  }
  at[-1] = at[-2] = L'.';  // 16 bytes leave two characters of padding.
  *at = L'\0';
  return out.text;
}

CInstallCommand* make(void* library, const char* factory) {
  const auto create = reinterpret_cast<CInstallCommand* (*)()>(GetProcAddress(library, factory));
  check(create != nullptr, factory);
  if (create == nullptr) ExitProcess(failures);
  return create();
}

uint32_t load(CInstallCommand* command, const Pair* pairs) {
  TableMap map(pairs);
  const uint32_t result = command->LoadCiphered(NodeMapPtr(&map));
  check(map.references == 1, "the callee releases the map's reference once");
  check(map.attributes_alive == 0, "the callee releases the attributes");
  return result;
}

void drive_nop(void* library, uintptr_t key) {
  CInstallCommand* const nop = make(library, "GetCNopCommand");
  check(nop->GetIndex() == -1 && nop->index == -1, "no index at the start");
  nop->SetIndex(5);
  check(nop->GetIndex() == 5 && nop->index == 5, "SetIndex");
  Ciphered next, result, condition;
  const Pair pairs[] = {{L"next", cipher(key, "17", next)},
                        {L"errVar", cipher(key, "Outcome", result)},
                        {L"execCondition", cipher(key, "Allowed", condition)},
                        {nullptr, nullptr}};
  check(load(nop, pairs) == 0, "LoadCiphered");
  check(nop->next == 17, "next, at its place");
  check(nop->errVar != nullptr && same(nop->errVar, "Outcome"), "errVar, at its place");
  check(nop->execCondition != nullptr && same(nop->execCondition, "int_Allowed"), "execCondition, at its place");
  check(!nop->executed, "not yet executed");
  check(!nop->CheckExecCondition(), "the condition does not hold");
  find("int_Allowed")->value = 1;
  check(nop->CheckExecCondition(), "the condition holds");
  check(nop->Execute(0, 0) == 0 && nop->executed, "Execute");
  check(nop->GetNextIndex() == 17, "GetNextIndex");
  nop->SelfFree();
}

void drive_jump(void* library, uintptr_t key) {
  CInstallCommand* const jump = make(library, "GetCJumpCommand");
  jump->SetIndex(7);
  Ciphered condition, value, target;
  const Pair pairs[] = {{L"condition", cipher(key, "Answer", condition)},
                        {L"value", cipher(key, "42", value)},
                        {L"target", cipher(key, "90", target)},
                        {nullptr, nullptr}};
  check(load(jump, pairs) == 0, "LoadCiphered of a jump");
  check(jump->Execute(0, 0) == 0 && jump->GetNextIndex() == 90, "the jump is taken");
  find("int_Answer")->value = 41;
  check(jump->Execute(0, 0) == 0 && jump->GetNextIndex() == 8, "the jump is not taken");
  const Pair plain[] = {{L"index", L"3"}, {L"next", L"4"}, {nullptr, nullptr}};
  TableMap map(plain);
  check(jump->LoadPlain(NodeMapPtr(&map)) == 0 && jump->index == 3 && jump->next == 4, "LoadPlain");
  check(map.references == 1, "LoadPlain releases the map's reference once");
  delete jump;  // The destructor's slot, with the flag that frees the memory.
}

void add_error(IErrorApi* errors, uint32_t code, const wchar_t* source, const wchar_t* format, ...) {
  __builtin_va_list arguments;
  __builtin_va_start(arguments, format);
  errors->AddError(code, source, format, arguments);
  __builtin_va_end(arguments);
}

/// The command puts the library's own log and error text; both are used and released by their slots.
void drive_logger(void* library, uintptr_t key) {
  CInstallCommand* const command = make(library, "GetCLoggerCommand");
  Ciphered label, crypt, length;
  const Pair pairs[] = {{L"label", cipher(key, "foreign", label)},
                        {L"crypt", cipher(key, "AES", crypt)},
                        {L"length", cipher(key, "256", length)},
                        {nullptr, nullptr}};
  check(load(command, pairs) == 0 && command->Execute(0, 0) == 0, "the log is up");
  auto* const errors = get<IErrorApi>("SelfFree_ErrorApi");
  wchar_t text[64];
  uint64_t size = 0;
  check(errors->GetErrors(text, &size) == 122 && size == 1, "no text yet");
  add_error(errors, 31, L"host", L"%i %s", 7, L"times");
  size = 64;
  check(errors->GetErrors(text, &size) == 0 && ::same(text, L"Error: 0x1F|host|7 times\n"), "the error's line");
  errors->SelfFree();
  auto* const log = get<ILoggerApi>("SelfFree_LoggerApi");
  log->WriteLine(L"from another ABI\n");
  log->SetMergedNameTag(L"abi.");
  log->SelfFree();
  FoundFile found;
  check(SetCurrentDirectoryW(L"C:\\ProgramData") != 0, "the logs' folder");
  void* const search = FindFirstFileW(L"foreign.abi.*.kyinstall.v2.bin", &found);
  check(reinterpret_cast<intptr_t>(search) != -1, "the merged log");
  FindClose(search);
  check(DeleteFileW(found.name) != 0, "nobody holds the log");
  command->SelfFree();
}

}  // namespace

extern "C" __declspec(dllexport) uint64_t Get(const char* key) {
  const Entry* const entry = find(key);
  return entry == nullptr ? 0 : entry->value;
}

extern "C" __declspec(dllexport) void Put(const char* key, uint64_t value) {
  if (Entry* const entry = find(key)) entry->value = value;
}

extern "C" void host_main() {
  void* const library = LoadLibraryW(first_argument());
  check(library != nullptr, "the library loads");
  if (library == nullptr) ExitProcess(failures);

  Converter converter;
  CountingLogger logger;
  auto* const decrypter = new Decrypter;
  decrypter->key = make_key();
  decrypter->converter = &converter;
  put("SelfFree_Decrypter", decrypter);
  put("SelfFree_LoggerApi", &logger);
  drive_nop(library, decrypter->key);
  drive_jump(library, decrypter->key);
  check(converter.conversions >= 6 && converter.others == 0, "the converter's slot");
  check(logger.records > 0, "the logger's slots");
  drive_logger(library, decrypter->key);
  decrypter->SelfFree();
  check(FreeLibrary(library) != 0, "the library unloads");
  if (failures == 0) say("all checks hold\n");
  ExitProcess(failures);
}
