#pragma once

#include <string>
#include <system_error>

#include "installer/utils/base/xml/xml_reader.h"
#include "ky/install_command.h"

namespace ky {

/// Reads one text out of an XML document by XPath and stores it, expanded, in a string variable. Each run parses the
/// document anew.
///
/// Deliberately outside the standard shape: there is no line at the begin, and the end is traced however it comes.
/// `xpath` keeps its expanded form for the next run. `defaultValue` goes to the log alone: scripts rely on the variable
/// staying as it was where nothing was read. What the variable held is not released.
///
/// Attributes: var (name without prefix), xpath (expanded), attribute (absent or empty: the element's text), xmlVar
/// (name
///   of the text variable that holds the document), file (its path, expanded; looked at without xmlVar alone),
///   defaultValue (expanded)
/// Keys read: String_ of xmlVar, which must hold a text; String_InstallItemsXml, the path, where neither xmlVar nor
/// file
///   is given; the variables in what is expanded, the value that was read too
/// Keys written: String_ of var; int_ReturnCode where nothing was read, untouched otherwise
/// Results: 0, also where nothing matched or the text is empty; 1168 where the document could not be read; 1359 when
///   there is no path or another thread is inside. A load gives the failed read's code.
class CGetStringFromXmlCommand final : public Destroyable<CGetStringFromXmlCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  struct Reading {
    std::wstring text;
    std::error_code code;
  };

  [[nodiscard]] std::wstring Path() const;
  [[nodiscard]] Reading ReadFromVariable() const;
  [[nodiscard]] Reading ReadFrom(const base::xml::xml_base_reader& reader) const;
  void ReportFailure(std::int32_t code, const char* key) const;

  std::wstring var, file, xpath, attribute, defaultValue, xmlVar;
};

}  // namespace ky
