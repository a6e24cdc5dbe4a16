#include "tools/ky/receipt/receipt_json.h"

#include <picojson.h>

#include "installer/utils/base/strings/utf8.h"

namespace receipt {

namespace {

using base::strings::to_utf8;
using picojson::array;
using picojson::object;
using picojson::value;

constexpr std::int64_t format_version = 1;

value number(std::int64_t n) {
  return value(n);
}

value text_or_null(const std::wstring& text) {
  return text.empty() ? value() : value(to_utf8(text));
}

value from_row(const Row& row) {
  array commands;
  for (const std::int32_t index : row.commands) commands.push_back(number(index));
  object out{{"kind", value(to_text(row.target.kind))},
             {"path", value(to_utf8(row.target.path))},
             {"state", value(to_text(row.state))},
             {"reason", text_or_null(row.reason)},
             {"code", number(row.code)},
             {"commands", value(std::move(commands))}};
  if (row.target.kind == host::TargetKind::registry_value) out["value"] = value(to_utf8(row.target.value));
  return value(std::move(out));
}

value from_not_named(const NotNamed& missing) {
  return value(object{{"index", number(missing.index)},
                      {"command", value(missing.command)},
                      {"attribute", value(missing.what.attribute)},
                      {"text", value(to_utf8(missing.what.text))},
                      {"reason", value(to_utf8(missing.what.reason))}});
}

value count_of(const Receipt& receipt, State state) {
  return number(static_cast<std::int64_t>(receipt.count(state)));
}

}  // namespace

std::string to_json(const Receipt& receipt) {
  array things;
  for (const Row& row : receipt.rows) things.push_back(from_row(row));
  array not_named;
  for (const NotNamed& missing : receipt.not_named) not_named.push_back(from_not_named(missing));
  const value document(object{
      {"format", value("ky-receipt")},
      {"version", number(format_version)},
      {"counts", value(object{{"removed-now", count_of(receipt, State::removed_now)},
                              {"already-absent", count_of(receipt, State::already_absent)},
                              {"still-there", count_of(receipt, State::still_there)},
                              {"not-named", number(static_cast<std::int64_t>(receipt.not_named.size()))}})},
      {"things", value(std::move(things))},
      {"notNamed", value(std::move(not_named))},
  });
  return document.serialize(true);
}

}  // namespace receipt
