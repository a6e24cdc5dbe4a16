#pragma once

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
    const auto code = gate_.pass(operation);
    if (!code) return call();
    errors_.set_last(*code);
    return failure;
  }

  /// `call()`, or the planned code as its answer.
  template <class Call>
  auto answer(Operation operation, Call call) -> decltype(call()) {
    const auto code = gate_.pass(operation);
    return code ? static_cast<decltype(call())>(*code) : call();
  }

  Port& inner_;

 private:
  Gate& gate_;
  ports::Errors& errors_;
};

}  // namespace faults
