#include "EmbeddedHost/tests/DamageJudge.h"
#include "EmbeddedHost/tests/DamageWalk.h"
#include "EmbeddedHost/tests/ModelFixture.h"
#include "EmbeddedHost/tests/OrdinaryUser.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <signal.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

constexpr unsigned kSeconds = 20;

int fromEnvironment(const char *name, int otherwise) {
  const char *text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

/// Below a fresh folder: one for the tested file, one for copies of it.
class DamageBench {
public:
  DamageBench() {
    std::filesystem::create_directory(tested());
    std::filesystem::create_directory(scratch());
  }
  std::string tested() const { return m_folder.path("tested"); }
  std::string scratch() const { return m_folder.path("scratch"); }

private:
  TestFolder m_folder;
};

struct Tally {
  int trials = 0;
  int opened = 0;
  int violations = 0;
  std::string report;
};

void judge(const DamageJudge &judge, const ProjectBytes &bytes, const std::string &name, Tally &tally) {
  for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
    const DamageJudge::Verdict verdict = judge.tryOut(bytes, mode);
    tally.opened += verdict.isOpened ? 1 : 0;
    if (!verdict.violation.empty()) {
      ++tally.violations;
      tally.report +=
          name + (mode == OpenMode::ReadOnly ? ", reading: " : ", writing: ") + verdict.violation + "\n";
    }
  }
}

Tally damageTrials(const Opener &opener, unsigned seed, int trials, unsigned seconds) {
  const DamageBench bench;
  const SoundProject sound = makeSoundProject(bench.scratch());
  const DamageJudge judges(bench.tested(), opener, seconds);
  Tally tally;
  for (; tally.trials < trials; ++tally.trials) {
    // Each trial by a seed of its own, so that one can be repeated alone.
    std::mt19937 random(seed + static_cast<unsigned>(tally.trials));
    const int kind = tally.trials % kDamageKinds;
    judge(judges, damaged(sound, kind, random),
          "trial " + std::to_string(tally.trials) + " (" + damageName(kind) + ")", tally);
  }
  return tally;
}

TEST(DamageTest, DamagedFiles_AreRefusedOrOpenedClean) {
  const int trials = fromEnvironment("OPTSTUDY_DAMAGE_TRIALS", 100);
  const int seed = fromEnvironment("OPTSTUDY_DAMAGE_SEED", 1);
  EXPECT_EQ(reportOfOrdinaryUser([&] {
              const DamageBench bench;
              const std::string scratch = bench.scratch();
              const Tally tally =
                  damageTrials([&scratch](const std::string &file,
                                          OpenMode mode) { return openAndWalk(file, mode, scratch); },
                               static_cast<unsigned>(seed), trials, kSeconds);
              std::printf("damage: %d trials, %d violations (seed %d, %d of %d openings succeeded)\n",
                          tally.trials, tally.violations, seed, tally.opened, 2 * tally.trials);
              std::fflush(stdout);
              // Neither all nor none: else it would not be these files that were tried.
              const bool isTelling = tally.opened > 0 && tally.opened < 2 * tally.trials;
              return tally.report + (isTelling ? "" : "nothing was tried\n");
            }),
            "");
}

TEST(DamageTest, SoundProject_IsOpenedInBothModes) {
  EXPECT_EQ(
      reportOfOrdinaryUser([] {
        const DamageBench bench;
        const std::string scratch = bench.scratch();
        const SoundProject sound = makeSoundProject(scratch);
        const DamageJudge judges(
            bench.tested(),
            [&scratch](const std::string &file, OpenMode mode) { return openAndWalk(file, mode, scratch); },
            kSeconds);
        Tally tally;
        judge(judges, {sound.saved, "", ""}, "sound", tally);
        judge(judges, sound.interrupted, "interrupted", tally);
        const bool isLarge = sound.saved.size() >= std::size_t{200} * 4096;
        return tally.report + std::to_string(tally.opened) + (isLarge ? " opened" : " small");
      }),
      "4 opened");
}

struct WrongOpener {
  const char *name;
  Opener open;
  const char *violation;
};

// What the suite is there to find, each found in every trial.
TEST(DamageTest, WrongOpeners_AreFound) {
  const auto touch = [](const std::string &file) {
    std::ofstream(file, std::ios::app) << 'x';
  };
  const WrongOpener wrong[] = {
      {"writes although it refuses",
       [&touch](const std::string &file, OpenMode /*mode*/) {
         touch(file);
         return Opening::Refused;
       },
       "it wrote"},
      {"leaves a file",
       [&touch](const std::string &file, OpenMode /*mode*/) {
         touch(file + ".left");
         return Opening::Refused;
       },
       "it wrote"},
      {"crashes",
       [](const std::string & /*file*/, OpenMode /*mode*/) {
         signal(SIGSEGV, SIG_DFL);
         raise(SIGSEGV);
         return Opening::Opened;
       },
       "it was ended by signal 11"},
      {"hangs",
       [](const std::string & /*file*/, OpenMode /*mode*/) {
         for (;;) {
           pause();
         }
         return Opening::Opened;
       },
       "it hung"},
      {"throws",
       [](const std::string & /*file*/, OpenMode /*mode*/) -> Opening { throw std::runtime_error("no"); },
       "an exception came out"},
      {"refuses without a name",
       [](const std::string & /*file*/, OpenMode /*mode*/) { return Opening::RefusedWithoutName; },
       "the refusal does not name the file"},
  };
  for (const WrongOpener &each : wrong) {
    EXPECT_EQ(reportOfOrdinaryUser([&each] {
                const DamageBench bench;
                const DamageJudge judges(bench.tested(), each.open, 1);
                Tally tally;
                judge(judges, {"some bytes", "", ""}, "file", tally);
                return tally.report;
              }),
              "file, reading: " + std::string(each.violation) + "\nfile, writing: " + each.violation + "\n")
        << each.name;
  }
}

} // namespace
} // namespace EmbeddedHost
