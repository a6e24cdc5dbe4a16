#pragma once

#include <optional>

#include "platform/faults/gate.h"
#include "platform/ports/system.h"

namespace faults {

/// What all wrapped ports share: the port inside, and the two ways in which a call fails.
template <class Port>
class Faulty : public Port {
 public:
  Faulty(Port& inner, Gate& gate, ports::Errors& errors) : inner_(inner), gate_(gate), errors_(errors) {}

 protected:
  ~Faulty() = default;

  /// `call()`, or `failure` with the planned code in the last error.
  template <class Answer, class Call>
  Answer ask(Operation operation, Answer failure, Call call) {
    const auto code = planned(operation);
    if (!code) return call();
    errors_.set_last(*code);
    return failure;
  }

  /// `call()`, or the planned code as its answer.
  template <class Call>
  auto answer(Operation operation, Call call) -> decltype(call()) {
    const auto code = planned(operation);
    return code ? static_cast<decltype(call())>(*code) : call();
  }

  Port& inner_;

 private:
  /// Taking the gate's lock may touch the last error on Windows, which a call that succeeds must not.
  std::optional<ports::ErrorCode> planned(Operation operation) {
    const ports::ErrorCode last = errors_.last();
    const std::optional<ports::ErrorCode> code = gate_.pass(operation);
    errors_.set_last(last);
    return code;
  }

  Gate& gate_;
  ports::Errors& errors_;
};

}  // namespace faults
