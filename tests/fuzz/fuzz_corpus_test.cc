// Replays the fuzz target over its seed corpus and every input that once found a bug, so that
// a fixed crash or hang stays fixed without a fuzzing run. The target aborts on a bad answer;
// ctest's timeout catches a hang.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

TEST(FuzzCorpus, EverySeedAndRegressionInputIsAnsweredAlikeTwice) {
  LLVMFuzzerInitialize(nullptr, nullptr);
  int inputs = 0;
  for (char const* directory : {"corpus", "regressions"}) {
    auto const path = std::filesystem::path(CORVEX_SOURCE_DIR) / "fuzz" / directory;
    for (auto const& entry : std::filesystem::directory_iterator(path)) {
      std::ifstream file(entry.path(), std::ios::binary);
      std::vector<char> const bytes{std::istreambuf_iterator<char>(file), {}};
      SCOPED_TRACE(entry.path().string());
      LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
      ++inputs;
    }
  }
  EXPECT_GE(inputs, 10);
}

}  // namespace
