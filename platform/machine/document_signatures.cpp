#include <algorithm>
#include <array>
#include <string>

#include "platform/machine/document_sections.h"

namespace machine {

namespace {

struct Verdict {
  const char* name;
  ports::Result result;
};
constexpr std::array<Verdict, 5> verdicts = {{{"trusted", ports::trust::trusted},
                                              {"tampered", ports::trust::bad_digest},
                                              {"expired", ports::trust::expired},
                                              {"untrusted_root", ports::trust::untrusted_root},
                                              {"not_trusted", ports::trust::subject_not_trusted}}};

[[nodiscard]] ports::Result read_trust(const JsonNode& node) {
  if (node.is_number()) return static_cast<ports::Result>(node.number32());
  const std::string& name = node.utf8();
  const auto found =
      std::find_if(verdicts.begin(), verdicts.end(), [&name](const Verdict& v) { return v.name == name; });
  if (found == verdicts.end()) node.fail("\"" + name + "\" is not known here");
  return found->result;
}

[[nodiscard]] picojson::value write_trust(ports::Result result) {
  const auto found =
      std::find_if(verdicts.begin(), verdicts.end(), [result](const Verdict& v) { return v.result == result; });
  return found != verdicts.end() ? picojson::value(std::string(found->name))
                                 : json_number(static_cast<std::uint32_t>(result));
}

constexpr std::string_view digits = "0123456789abcdef";

[[nodiscard]] std::vector<std::uint8_t> read_serial(const JsonNode& node) {
  std::vector<std::uint8_t> bytes;
  const std::string& text = node.utf8();
  const bool good = text.size() % 2 == 0 && text.find_first_not_of(digits) == std::string::npos;
  if (!good) node.fail("pairs of the digits 0 to 9 and a to f are wanted here");
  for (std::size_t end = text.size(); end > 0; end -= 2) {
    bytes.push_back(static_cast<std::uint8_t>(digits.find(text[end - 2]) * 16 + digits.find(text[end - 1])));
  }
  return bytes;
}

[[nodiscard]] picojson::value write_serial(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    text.append(1, digits[*byte >> 4]).append(1, digits[*byte & 0xF]);
  }
  return picojson::value(text);
}

}  // namespace

Signature read_signature(const JsonNode& node) {
  node.only({"subject", "issuer", "serial", "trust", "certificate"});
  Signature signature;
  signature.subject = node.member("subject").text();
  signature.issuer = node.text_or("issuer", L"");
  if (const auto serial = node.find("serial")) signature.serial = read_serial(*serial);
  if (const auto trust = node.find("trust")) signature.trust = read_trust(*trust);
  signature.certificate = node.flag("certificate", true);
  return signature;
}

picojson::value write_signature(const Signature& signature) {
  picojson::object out;
  out["subject"] = json_text(signature.subject);
  if (!signature.issuer.empty()) out["issuer"] = json_text(signature.issuer);
  if (!signature.serial.empty()) out["serial"] = write_serial(signature.serial);
  if (signature.trust != ports::trust::trusted) out["trust"] = write_trust(signature.trust);
  if (!signature.certificate) out["certificate"] = picojson::value(false);
  return picojson::value(out);
}

}  // namespace machine
