#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/faults/faulty.h"
#include "platform/ports/script_cipher.h"
#include "platform/ports/xml.h"

namespace faults {

/// A cipher whose calls fail by plan.
class FaultyCipher final : public Faulty<ports::ScriptCipher> {
 public:
  using Faulty::Faulty;

  std::uintptr_t import_key(std::span<const std::uint8_t, key_size> bytes) override {
    return ask(Operation::cipher_import_key, std::uintptr_t{0}, [&] { return inner_.import_key(bytes); });
  }
  void destroy_key(std::uintptr_t key) override { inner_.destroy_key(key); }
  bool decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                     std::uint32_t& size) override {
    return ask(Operation::cipher_decode_base64, false, [&] { return inner_.decode_base64(text, length, into, size); });
  }
  bool decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) override {
    return ask(Operation::cipher_decrypt, false, [&] { return inner_.decrypt(key, bytes, size); });
  }
  std::vector<std::uint8_t> encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) override {
    return ask(Operation::cipher_encrypt, std::vector<std::uint8_t>(), [&] { return inner_.encrypt(key, plain); });
  }
};

/// A key maker whose calls fail by plan.
class FaultyKeyMaker final : public Faulty<ports::KeyMaker> {
 public:
  using Faulty::Faulty;

  bool random(std::span<std::uint8_t> into) override {
    return ask(Operation::key_maker_random, false, [&] { return inner_.random(into); });
  }
  bool rsa_pair(std::uint32_t bits, ports::RsaPair& out) override {
    return ask(Operation::key_maker_rsa_pair, false, [&] { return inner_.rsa_pair(bits, out); });
  }
};

/// XML documents whose calls fail by plan. What a failed call hands out is null.
class FaultyXml final : public Faulty<ports::Xml> {
 public:
  using Faulty::Faulty;

  ports::Result parse(std::string_view utf8, ports::XmlNode*& document, std::wstring& reason) override {
    return hand_out(Operation::xml_parse, document, [&] { return inner_.parse(utf8, document, reason); });
  }
  ports::Result create_document(ports::XmlNode*& document) override {
    return hand_out(Operation::xml_create_document, document, [&] { return inner_.create_document(document); });
  }
  ports::Result load_text(ports::XmlNode* document, std::wstring_view text) override {
    return answer(Operation::xml_load_text, [&] { return inner_.load_text(document, text); });
  }
  ports::Result load_bytes(ports::XmlNode* document, std::string_view bytes) override {
    return answer(Operation::xml_load_bytes, [&] { return inner_.load_bytes(document, bytes); });
  }
  ports::Result select_single_node(ports::XmlNode* from, const wchar_t* xpath, ports::XmlNode*& out) override {
    return hand_out(Operation::xml_select_single_node, out,
                    [&] { return inner_.select_single_node(from, xpath, out); });
  }
  ports::Result node_type(ports::XmlNode* node, std::int32_t& out) override {
    return answer(Operation::xml_node_type, [&] { return inner_.node_type(node, out); });
  }
  ports::Result root(ports::XmlNode* document, ports::XmlNode*& element) override {
    return hand_out(Operation::xml_root, element, [&] { return inner_.root(document, element); });
  }
  ports::Result first_element(ports::XmlNode* parent, ports::XmlNode*& element) override {
    return hand_out(Operation::xml_first_element, element, [&] { return inner_.first_element(parent, element); });
  }
  ports::Result next_element(ports::XmlNode* element, ports::XmlNode*& next) override {
    return hand_out(Operation::xml_next_element, next, [&] { return inner_.next_element(element, next); });
  }
  ports::Result name(ports::XmlNode* node, std::wstring& out) override {
    return answer(Operation::xml_name, [&] { return inner_.name(node, out); });
  }
  ports::Result text(ports::XmlNode* node, std::wstring& out) override {
    return answer(Operation::xml_text, [&] { return inner_.text(node, out); });
  }
  ports::Result attributes(ports::XmlNode* element, ky::AttributeMap*& out) override {
    return hand_out(Operation::xml_attributes, out, [&] { return inner_.attributes(element, out); });
  }
  ports::Result length(ky::AttributeMap* map, std::int32_t& out) override {
    return answer(Operation::xml_length, [&] { return inner_.length(map, out); });
  }
  ports::Result item(ky::AttributeMap* map, std::int32_t position, ports::XmlNode*& out) override {
    return hand_out(Operation::xml_item, out, [&] { return inner_.item(map, position, out); });
  }
  ports::Result named_item(ky::AttributeMap* map, const wchar_t* name, ports::XmlNode*& out) override {
    return hand_out(Operation::xml_named_item, out, [&] { return inner_.named_item(map, name, out); });
  }
  void add_reference(ky::AttributeMap* map) override { inner_.add_reference(map); }
  void release(ky::AttributeMap* map) override { inner_.release(map); }
  void release(ports::XmlNode* node) override { inner_.release(node); }

 private:
  template <class Thing, class Call>
  ports::Result hand_out(Operation operation, Thing*& out, Call call) {
    out = nullptr;
    return answer(operation, call);
  }
};

}  // namespace faults
