#include "tools/ky/receipt/settle.h"

#include <algorithm>
#include <set>
#include <utility>

#include "installer/utils/base/strings/case_fold.h"
#include "platform/record/paths.h"
#include "tools/ky/receipt/scene.h"

namespace receipt {

namespace {

using UserNames = std::set<std::wstring, base::strings::LessIgnoringCase>;

constexpr std::wstring_view users_root = L"HKEY_USERS\\";
constexpr std::wstring_view each_user = L"HKEY_USERS\\*\\";

Evidence evidence_of(const Account& account) {
  Evidence evidence{account.deletions, account.moves, {}, account.closings, account.message};
  for (record::Deletion& deletion : evidence.deletions) deletion.path = under_own_name(deletion.path);
  for (const record::Change& change : account.changes) {
    if (change.kind == "delayed-move" && change.after) evidence.booked.push_back(change.path);
  }
  return evidence;
}

/// Users whose keys the run could reach: logged on, or mounted at some time.
UserNames reachable_users(const Account& account, const Scene& before) {
  UserNames users(before.users_at_hand().begin(), before.users_at_hand().end());
  for (const record::Action& action : account.actions) {
    if (action.kind != "hive-mounted" || !action.text.starts_with(users_root)) continue;
    const std::wstring key = under_own_name(action.text.substr(0, action.text.find(L" from ")));
    users.insert(key.substr(users_root.size()));
  }
  return users;
}

/// A process goes on when its file is moved aside.
Sight look_after(const Scene& after, const Target& target, const std::vector<record::Move>& moves) {
  Sight sight = after.look(target);
  if (target.kind != host::TargetKind::process_file) return sight;
  for (const record::Move& move : moves) {
    if (sight.there || !base::strings::equal_ignoring_case(move.from, record::plain_path(target.path))) continue;
    sight = after.look({target.kind, move.to});
  }
  return sight;
}

std::wstring user_of(const std::wstring& path) {
  if (!path.starts_with(users_root)) return {};
  return path.substr(users_root.size(), path.find(L'\\', users_root.size()) - users_root.size());
}

}  // namespace

Receipt settle(const Account& account, machine::State before, machine::State after) {
  const Scene first(std::move(before));
  const Scene last(std::move(after));
  const Findings findings(evidence_of(account));
  const UserNames reachable = reachable_users(account, first);
  UserNames users;
  for (const Scene* const scene : {&first, &last}) {
    for (std::wstring& name : scene->users()) users.insert(std::move(name));
  }

  Receipt receipt;
  receipt.not_named = account.named.not_named;
  const auto add = [&](Target target, std::vector<NamingCommand> by) {
    target.path = under_own_name(target.path);
    const Sight now = look_after(last, target, account.moves);
    Thing thing{std::move(target), false, now.there, now.note, std::move(by)};
    thing.before = first.look(thing.target).there;
    const std::wstring user = user_of(thing.target.path);
    if (!user.empty() && reachable.count(user) == 0) {
      thing.note = L"the user's hive was not mounted";
      // What the commands gave is about others.
      for (NamingCommand& command : thing.by) command.result = 0;
    }
    receipt.rows.push_back(findings.decide(thing));
  };
  for (const Naming& naming : account.named.things) {
    if (!naming.target.path.starts_with(each_user)) {
      add(naming.target, naming.by);
      continue;
    }
    for (const std::wstring& user : users) {
      Target own = naming.target;
      own.path.replace(users_root.size(), 1, user);
      add(std::move(own), naming.by);
    }
  }
  return receipt;
}

}  // namespace receipt
