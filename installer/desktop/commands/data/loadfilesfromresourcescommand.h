#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ky/install_command.h"

namespace ky {

/// Copies the text of "XML" resources of this module into string variables.
///
/// Deliberately outside the standard shape: its lines are built on a `LogStream`, and the end line has no full stop.
///
/// Attributes: resourceID<n> (integer), outResource<n> (name), for any n from 1 on, gaps allowed; error (name)
/// Keys read: none
/// Keys written: String_ of each outResource<n>, whose old value is deliberately not released; int_ of error, 1359, at
/// the
///   first resource that holds no document, where it stops
/// Results: 0, also after such a stop; 1359 when another thread is inside
class CLoadFilesFromResourcesCommand final : public Destroyable<CLoadFilesFromResourcesCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void LoadAll() const;
  [[nodiscard]] bool LoadOne(std::int32_t id, const std::wstring& name) const;

  std::vector<std::pair<std::int32_t, std::wstring>> resources;
  std::wstring error;
};

}  // namespace ky
