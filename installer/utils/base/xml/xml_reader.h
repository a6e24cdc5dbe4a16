#pragma once

#include <memory>
#include <string>
#include <system_error>

#include "installer/utils/base/xml/document_holder.h"
#include "installer/utils/base/xml/xml_node.h"

namespace base::xml {

/// Reads values out of one XML document by XPath 1.0. Codes are those of the system's calls, in the Windows category: 1
/// where nothing matches, an HRESULT otherwise. A null `xpath` or `attribute_name` fails the assertion on its name and
/// stops the process. One thread.
class xml_base_reader {
 public:
  virtual ~xml_base_reader() = default;

  /// The text of the first match, which may be empty. The first form raises `std::system_error`, "get_value has
  /// failed!"; the second sets `code`, to 0 on success, and gives an empty text.
  [[nodiscard]] virtual std::wstring get_value(const wchar_t* xpath) const = 0;
  [[nodiscard]] virtual std::wstring get_value(const wchar_t* xpath, std::error_code& code) const = 0;

  /// The text of an attribute of the first match, with "get_attribute has failed!".
  [[nodiscard]] virtual std::wstring get_attribute(const wchar_t* xpath, const wchar_t* attribute_name) const = 0;
  [[nodiscard]] virtual std::wstring get_attribute(const wchar_t* xpath, const wchar_t* attribute_name,
                                                   std::error_code& code) const = 0;

  /// The first match, which must be an element; see `xml_node`. The first form gives no node on failure.
  [[nodiscard]] virtual xml_node get_node(const wchar_t* xpath, std::error_code& code) const = 0;
  [[nodiscard]] virtual xml_node get_node(const wchar_t* xpath) const = 0;
};

/// A reader of XML text (`FromText`), or of a file: UTF-8, UTF-16 with its byte order mark, or the encoding that it
/// declares, and at most `largest_file` bytes.
template <bool FromText>
class xml_reader final : public xml_base_reader {
 public:
  /// Parses `source`, a text or a path. Raises `std::system_error`: "::CreateInstance has failed!" where there is no
  /// XML engine, "::load xml has failed!" with the call's status, which is 1 for a document that is not well-formed and
  /// for a file that is missing, unreadable or too large. A null `source` fails the assertion on its name.
  explicit xml_reader(const wchar_t* source);

  [[nodiscard]] std::wstring get_value(const wchar_t* xpath) const override;
  [[nodiscard]] std::wstring get_value(const wchar_t* xpath, std::error_code& code) const override;
  [[nodiscard]] std::wstring get_attribute(const wchar_t* xpath, const wchar_t* attribute_name) const override;
  [[nodiscard]] std::wstring get_attribute(const wchar_t* xpath, const wchar_t* attribute_name,
                                           std::error_code& code) const override;
  [[nodiscard]] xml_node get_node(const wchar_t* xpath, std::error_code& code) const override;
  [[nodiscard]] xml_node get_node(const wchar_t* xpath) const override;

 private:
  std::unique_ptr<document_holder> holder_;
};

inline constexpr std::size_t largest_file = std::size_t{64} << 20;

extern template class xml_reader<false>;
extern template class xml_reader<true>;

}  // namespace base::xml
