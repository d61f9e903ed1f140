// Query-string serialization of a 50-key nested parameter dictionary, against
// a plain concatenation of the same field=value pairs in the same run.
#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

#include "http/serialization/NKQueryStringPair.h"

namespace quillet::http {
namespace {

using platform::Value;

// 50 keys: plain texts, numbers, nested dictionaries and short arrays.
Value parameters() {
  Value root;
  for (int i = 0; i < 50; ++i) {
    const std::string key = "key" + std::to_string(i);
    switch (i % 4) {
      case 0:
        root.set(key, "value " + std::to_string(i) + " & more");
        break;
      case 1:
        root.set(key, i * 37);
        break;
      case 2:
        root.set(key, Value::dictionary({{"inner", "a/b"}, {"id", i}}));
        break;
      default:
        root.set(key, Value::array({"x", "y", i}));
        break;
    }
  }
  return root;
}

void BM_BaselineConcatenation(benchmark::State& state) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const auto& pair : NKQueryStringPair::pairsFromKeyAndValue(Value(), parameters())) {
    pairs.emplace_back(pair.field().description(), pair.value().description());
  }
  for (auto _ : state) {
    std::string query;
    for (const auto& [field, value] : pairs) {
      if (!query.empty()) query += '&';
      query += field;
      query += '=';
      query += value;
    }
    benchmark::DoNotOptimize(query);
  }
}
BENCHMARK(BM_BaselineConcatenation);

void BM_QueryStringFromParameters(benchmark::State& state) {
  const Value root = parameters();
  for (auto _ : state) {
    std::string query = NKQueryStringPair::queryStringFromParameters(root);
    benchmark::DoNotOptimize(query);
  }
}
BENCHMARK(BM_QueryStringFromParameters);

}  // namespace
}  // namespace quillet::http
