#include <benchmark/benchmark.h>

#include <string>

#include "bench/desk_world.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"

namespace bench {
namespace {

/// Ten variables as scripts have them, and a text that uses each once.
std::wstring lay_out(host::Store& store) {
  std::wstring text;
  for (int n = 0; n < 10; ++n) {
    const std::string name = "Variable" + std::to_string(n);
    store.put("String_" + name, ky::ToStored(new ky::CString(L"C:\\Program Files\\Tavrine\\")));
    text += L"part\\[" + std::wstring(name.begin(), name.end()) + L"]";
  }
  return text;
}

void expand_ten(benchmark::State& state) {
  DeskWorld desk;
  const std::wstring text = lay_out(desk.session.store());
  for (auto _ : state) {
    std::wstring out;
    benchmark::DoNotOptimize(ky::ExpandVariables(text, out));
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(expand_ten)->Unit(benchmark::kMicrosecond);

/// Tuned by hand for texts whose values hold no variables: one pass, one buffer, the same store.
void expand_ten_floor(benchmark::State& state) {
  DeskWorld desk;
  const std::wstring text = lay_out(desk.session.store());
  for (auto _ : state) {
    std::wstring out;
    out.reserve(text.size() * 4);
    char key[64] = "String_";
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (text[at] != L'[') {
        out.push_back(text[at]);
        continue;
      }
      char* to = key + 7;
      while (text[++at] != L']') *to++ = static_cast<char>(text[at]);
      *to = '\0';
      out += ky::FromStored<ky::CString*>(ky::GetStored(key))->value;
    }
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(expand_ten_floor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
