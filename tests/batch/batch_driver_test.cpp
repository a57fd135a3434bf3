#include "batch/batch_driver.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "support/run_loop.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

using Events = std::vector<std::string>;

/// Writes down what the driver shows.
class RecordingView : public BatchView {
 public:
  BatchOptions options() const override { return {.useSubfolder = subfolder}; }
  void setStatus(const std::string& text) override { events.push_back(text); }
  void setProgress(double fraction) override { events.push_back(line("bar ", fraction)); }
  void appendLog(const LogEntry& entry) override {
    events.push_back("log " + entry.text());
    log.push_back(entry.text());
    last = entry;
  }

  bool subfolder = false;
  Events events;
  Events log;
  LogEntry last;
};

class Driver : public testing::Test {
 protected:
  void run() {
    queue.runUntil([this] { return driver.totalFiles() == 0; });
  }
  fs::path writeWav(const std::string& name, std::size_t frames = 1) const {
    return folder.write(name, wav({fmt({.blockAlign = 1, .bits = 8}), data(ByteBuffer(frames))}));
  }

  const TemporaryFolder folder;
  RecordingView view;
  RunLoop queue;
  BatchDriver driver{view, queue, std::make_unique<SerialQueue>("test")};
};

TEST_F(Driver, ShowsAFileStepByStep) {
  const fs::path input = folder.write(
      "loop.wav", wav({fmt({}), data(bytes("01 02 03")), smpl(60, 0, {{0, 2, 0, 0, 1}})}));
  driver.processURLs({input});
  EXPECT_EQ(driver.totalFiles(), 1);
  run();
  EXPECT_EQ(
      view.events,
      (Events{"bar 0", "Converting loop.wav …", "bar 1",
              "log loop.wav => loop.aif  [16-bit, mono, 44100 Hz, root key 60, 1 loop, 2 markers]\n"
              "   ⚠\uFE0E Incomplete last frame discarded.\n"
              "   ⚠\uFE0E Loop 1: AIFF has no backward loops – converted to a forward loop.\n"
              "   ⚠\uFE0E Loop 1: a play count of 1 cannot be stored in AIFF (the loop plays "
              "indefinitely).",
              "bar 1", "Done – 1 file processed.", "bar 1"}));
  EXPECT_EQ(view.last.outcome, Outcome::converted);
  EXPECT_EQ(fs::path(view.last.input), input);
  EXPECT_EQ(fs::path(view.last.output), folder / "loop.aif");
  EXPECT_EQ(view.last.bytes, fs::file_size(folder / "loop.aif"));
  EXPECT_EQ(std::get<std::int64_t>(view.last.warnings.at(2).values.at(1)), 1) << "the play count";
  EXPECT_EQ(driver.finishedFiles(), 0);
  EXPECT_EQ(driver.failedFiles(), 0);
}

TEST_F(Driver, GoesOnAfterABrokenFile) {
  folder.write("2.wav", "RIFF1234WAVE");
  folder.write("3.wav", "RIFX1234WAVE");
  fs::create_symlink("gone", folder / "4.wav");
  writeWav("1.wav");
  folder.write("5.WAV", aiff({comm({}), ssnd({})}));
  folder.write("6.wav", "RIFF1234WAV");
  driver.processURLs({folder.path()});
  run();
  EXPECT_EQ(view.log,
            (Events{"1.wav => 1.aif  [8-bit, mono, 44100 Hz]", "✗ 2.wav: The fmt chunk is missing.",
                    "✗ 3.wav: Unsupported format: neither WAV nor AIFF",
                    "✗ 4.wav: Cannot read '" + (folder / "4.wav").native() +
                        "': No such file or directory",
                    "5.WAV => 5.wav  [16-bit, mono, 44100 Hz]",
                    "✗ 6.wav: Unsupported format: file is too short"}));
  EXPECT_EQ(driver.failedFiles(), 4);
}

TEST_F(Driver, CountsThePartOfTheCurrentFile) {
  driver.processURLs({writeWav("a.wav"), writeWav("b.wav", 2'097'152)});
  run();
  const auto b = std::find(view.events.begin(), view.events.end(), "Converting b.wav …");
  EXPECT_EQ(Events(b + 1, b + 3), (Events{"bar 0.75", "bar 1"}));
}

TEST_F(Driver, StopsARunAfterTheCurrentBlockOrForGood) {
  const fs::path big = folder.write("a.wav", wav({fmt({}), bytes("'data' FF FF FF 7F")}));
  fs::resize_file(big, 1'000'000'000);
  const fs::path small = writeWav("b.wav");
  driver.processURLs({big, small});
  driver.processURLs({small});
  while (!fs::exists(folder / "a.aif"))
    std::this_thread::yield();
  driver.stopRun();
  driver.processURLs({small});
  queue.runUntil([&] { return view.log.size() == 2; });
  EXPECT_EQ(std::count(view.events.begin(), view.events.end(), "Stopped – 1 of 3 files processed."),
            1);
  EXPECT_EQ(view.log,
            (Events{"✗ a.wav: Stopped – '" + (folder / "a.aif").native() + "' is incomplete.",
                    "b.wav => b.aif  [8-bit, mono, 44100 Hz]"}));
  driver.stop();
  driver.processURLs({small});
  run();
  EXPECT_FALSE(fs::exists(folder / "b (1).aif"));
}

TEST_F(Driver, ASecondBatchJoinsTheRunningOneWithItsOwnOptions) {
  const std::vector<fs::path> files = {writeWav("1.wav"), writeWav("2.wav"), writeWav("3.wav"),
                                       writeWav("4.wav"), writeWav("5.wav")};
  driver.processURLs({files.begin(), files.begin() + 3});
  view.subfolder = true;
  queue.runUntil([&] { return driver.finishedFiles() == 2; });
  driver.processURLs({files.begin() + 3, files.end()});
  EXPECT_EQ(view.events.back(), "bar 0.4");
  run();
  EXPECT_EQ(view.events[view.events.size() - 2], "Done – 5 files processed.");
  EXPECT_EQ(view.log.size(), 5U);
  EXPECT_TRUE(fs::exists(folder / "3.aif"));
  EXPECT_TRUE(fs::exists(folder / "AIFF/4.aif"));
}

}  // namespace
}  // namespace corvana
