#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <array>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "bench/desk_world.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/plain_script.h"

namespace bench {
namespace {

constexpr std::size_t elements = 429;

/// The edition's script, padded with keys to delete, each another one.
std::string padded_script(const DeskWorld& desk) {
  script::PlainScript plain = script::read_plain_script("script.xml", read_source("resources/script.xml"));
  for (std::size_t n = 0; plain.elements.size() < elements; ++n) {
    plain.elements.push_back({"DeleteRegKey",
                              {{"base", "HKEY_LOCAL_MACHINE", {}},
                               {"subkey", "SOFTWARE\\Tavrine\\Components\\Padding " + std::to_string(n), {}},
                               {"recursive", "1", {}}},
                              {}});
  }
  return script::compile(plain, script::TextCipher(desk.system.cipher, host::built_in_script_key()));
}

void load_script(benchmark::State& state) {
  DeskWorld desk;
  const std::string bytes = padded_script(desk);
  for (auto _ : state) {
    if (!desk.session.load(bytes).empty()) state.SkipWithError("the script is refused");
    // The commands go off the clock: releasing them is the end of a run, not of a load.
    state.PauseTiming();
    static_cast<void>(desk.session.load("<install><commands/></install>"));
    state.ResumeTiming();
  }
}
BENCHMARK(load_script)->Unit(benchmark::kMicrosecond);

/// What the loader cannot do without: the document parsed, and each value deciphered once.
class Floor {
 public:
  Floor() {
    const host::ScriptKey& key = host::built_in_script_key();
    EVP_DecryptInit_ex(context_, EVP_aes_256_cbc(), nullptr, key.data(), iv_.data());
  }
  ~Floor() { EVP_CIPHER_CTX_free(context_); }
  Floor(const Floor&) = delete;
  Floor& operator=(const Floor&) = delete;

  int decipher(const char* value) {
    std::size_t length = 0;
    for (const char* from = value + 1; *from != '\0'; ++from) {
      text_[length++] = static_cast<unsigned char>(*from == '-'   ? '+'
                                                   : *from == '_' ? '/'
                                                   : *from == '.' ? '='
                                                                  : *from);
    }
    int bytes = EVP_DecodeBlock(binary_.data(), text_.data(), static_cast<int>(length)) / 16 * 16;
    int written = 0;
    int rest = 0;
    EVP_DecryptInit_ex(context_, nullptr, nullptr, nullptr, iv_.data());
    EVP_DecryptUpdate(context_, binary_.data(), &written, binary_.data(), bytes);
    EVP_DecryptFinal_ex(context_, binary_.data() + written, &rest);
    return written + rest;
  }

 private:
  EVP_CIPHER_CTX* context_ = EVP_CIPHER_CTX_new();
  std::array<unsigned char, 16> iv_{};
  std::array<unsigned char, 512> text_{};
  std::array<unsigned char, 512> binary_{};
};

void load_script_floor(benchmark::State& state) {
  const DeskWorld desk;
  const std::string bytes = padded_script(desk);
  Floor floor;
  for (auto _ : state) {
    pugi::xml_document document;
    document.load_buffer(bytes.data(), bytes.size());
    int total = 0;
    for (const pugi::xml_node element : document.first_child().first_child().children()) {
      total += floor.decipher(element.name());
      for (const pugi::xml_attribute attribute : element.attributes()) total += floor.decipher(attribute.value());
    }
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(load_script_floor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
