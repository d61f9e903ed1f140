// format() with "%@" over mixed values, and the JSON decoder on a news-like
// reply; each against a baseline from the same run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::platform {
namespace {

// Baseline: snprintf of a plain format with the same kinds of values.
void BM_BaselineSnprintf(benchmark::State& state) {
  char buffer[256];
  for (auto _ : state) {
    int n = std::snprintf(buffer, sizeof buffer, "id=%s count=%lld ratio=%g none=%s status=%s", "post-1234", 42LL, 0.75,
                          "<null>", "{ok=1;}");
    benchmark::DoNotOptimize(buffer);
    benchmark::DoNotOptimize(n);
  }
}
BENCHMARK(BM_BaselineSnprintf);

void BM_FormatObjects(benchmark::State& state) {
  const Value text("post-1234");
  const Value count(42);
  const Value ratio(0.75);
  const Value null = Value::null();
  const Value dict = Value::dictionary({{"ok", 1}, {"name", "a b"}});
  for (auto _ : state) {
    std::string out = format("id=%@ count=%@ ratio=%@ none=%@ status=%@", text, count, ratio, null, dict);
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(BM_FormatObjects);

// A reply of the news API: a status and about 4 KB of items.
std::string newsReply() {
  std::string items;
  for (int i = 0; i < 8; ++i) {
    if (i > 0) items += ",";
    items += R"({"id":")" + std::to_string(1000 + i) +
             R"(","news_title":"Council approves the new harbour bridge after long debate",)"
             R"("news_description":"The city council voted on Tuesday to approve the construction of a new bridge )"
             R"(across the harbour, ending a debate that lasted nearly a decade.",)"
             R"("news_image_normal":"http:\/\/127.0.0.1\/images\/normal\/)" +
             std::to_string(i) + R"(.jpg","news_source_url":"http:\/\/127.0.0.1\/story\/)" + std::to_string(i) +
             R"(","news_media_type":"Image","created_date":"2016-01-0)" + std::to_string(1 + i) +
             R"(","content_manger_name":null,"category_id":)" + std::to_string(i % 3) + R"(,"score":0.)" +
             std::to_string(5 + i) + "}";
  }
  return R"({"status":true,"message":"Success","result":[)" + items + "]}";
}

void BM_BaselineNlohmannParse(benchmark::State& state) {
  const std::string reply = newsReply();
  for (auto _ : state) {
    auto parsed = nlohmann::json::parse(reply);
    benchmark::DoNotOptimize(parsed);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * reply.size()));
  state.counters["bytes"] = static_cast<double>(reply.size());
}
BENCHMARK(BM_BaselineNlohmannParse);

void BM_JsonDecode(benchmark::State& state) {
  const std::string reply = newsReply();
  for (auto _ : state) {
    Value decoded = jsonDecode(reply);
    if (!decoded.isDictionary()) state.SkipWithError("reply did not decode");
    benchmark::DoNotOptimize(decoded);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * reply.size()));
}
BENCHMARK(BM_JsonDecode);

}  // namespace
}  // namespace quillet::platform
