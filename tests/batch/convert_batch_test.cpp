#include "batch/convert_batch.hpp"

#include <gtest/gtest.h>
#include <map>

#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

class RecordingListener : public BatchListener {
 public:
  void fileBegun(const AudioFile& file) override { begun += std::string(file.name()) + "\n"; }
  void progressMade(double) override {}
  void fileFinished(LogEntry entry, std::vector<Refusal> refusals) override {
    log += entry.text() + " " + fs::path(entry.output).filename().native() + "\n";
    for (const Refusal& refusal : refusals)
      log += refusal.reason + "\n";
  }
  bool isStopped() const override { return false; }

  std::string begun;  // one file at a time has the turn
  std::string log;
};

/// Everything that a run leaves behind: what it says, and each file with its content.
struct Traces {
  std::string begun, log;
  std::map<std::string, std::string> files;
};

/// Inputs that want each other's names, that are links to outputs of the same run, and that fail.
void writeInputs(const TemporaryFolder& folder) {
  for (int i = 0; i < 6; ++i) {
    const std::string n = std::to_string(i);
    const auto bytes = [&](std::size_t frames) {
      return ByteBuffer(frames * 2,
                        static_cast<std::uint8_t>(frames + static_cast<std::size_t>(i)));
    };
    for (const auto& [name, frames] : std::map<std::string, std::size_t>{
             {n + ".wav", 90'000}, {n + ".wave", 3}, {n + " (1).wav", 50'000}, {n + "b.wav", 4000}})
      folder.write(name, wav({fmt({}), data(bytes(frames))}));
    folder.write(n + ".aiff", aiff({comm({.frames = 5}), ssnd(bytes(5))}));
    folder.write(n + "broken.wav", "RIFF1234WAVE");
    fs::create_symlink(n + "b.aif", folder / (n + "c.aif"));
  }
}

Traces tracesOf(BatchOptions options, unsigned jobs) {
  const TemporaryFolder folder;
  writeInputs(folder);
  if (!options.outputFolder.empty()) options.outputFolder = folder / options.outputFolder;
  options.jobs = jobs;
  RecordingListener listener;
  for (int run = 0; run < 2; ++run) {  // the second one finds the outputs of the first
    for (const auto& item : fs::directory_iterator(folder.path()))
      if (fs::exists(item.path())) fs::last_write_time(item.path(), {});  // none is older
    convertBatch(collectAudioFiles({folder / "."}, options.outputFolder).files, options, listener);
  }
  Traces traces{listener.begun, listener.log, {}};
  for (std::size_t at = 0; (at = traces.log.find(folder.path().native(), at)) != std::string::npos;)
    traces.log.erase(at, folder.path().native().size());
  for (const auto& item : fs::recursive_directory_iterator(folder.path()))
    if (!item.is_directory())
      traces.files[fs::relative(item.path(), folder.path())] =
          item.is_symlink() ? "to " + fs::read_symlink(item.path()).native()
                            : readText(item.path());
  return traces;
}

TEST(ConvertBatch, SeveralThreadsLeaveWhatOneDoes) {
  const auto keepBoth = InputClash::keepBoth;
  for (const BatchOptions& options : std::vector<BatchOptions>{
           {},
           {.safe = true},
           {.overwrite = true, .clash = InputClash::fail},
           {.overwrite = true, .clash = keepBoth, .verify = true},
           {.overwrite = true, .clash = keepBoth, .safe = true},
           {.overwrite = true},
           {.skipExisting = true},
           {.safe = true, .verify = true, .preserveTimes = true, .skipExisting = true},
           {.useSubfolder = true, .overwrite = true, .clash = InputClash::fail},
           {.outputFolder = "out/deep", .preserveTimes = true}}) {
    const Traces serial = tracesOf(options, 1);
    for (const unsigned jobs : {2U, 8U}) {
      const Traces parallel = tracesOf(options, jobs);
      EXPECT_EQ(parallel.begun, serial.begun);
      EXPECT_EQ(parallel.log, serial.log);
      EXPECT_EQ(parallel.files.size(), serial.files.size());
      for (const auto& [name, content] : serial.files)
        EXPECT_TRUE(parallel.files.at(name) == content) << name;
    }
  }
}

}  // namespace
}  // namespace corvana
