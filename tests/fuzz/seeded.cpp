// Fuzzes a core without libFuzzer, for what only a Windows program can call: inputs come from a generator.
//
//     seeded_fuzz CORE SECONDS SEED CORPUS_FOLDER FINDING   runs inputs; one that fails is written to the file FINDING
//     seeded_fuzz CORE FILE                                 runs one input
//
// The exit status is 0, or not if the library and the definition differ, an input crashes or takes too long.
#include <windows.h>

#include <fuzz/core.h>
#include <support/crash_report.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
constexpr unsigned finding_exit_code = 1;

std::string running;
std::string kept_as;
std::atomic<std::uint64_t> runs = 0;

void keep_input() {
  std::ofstream(kept_as, std::ios::binary).write(running.data(), static_cast<std::streamsize>(running.size()));
}

// The system's own code raises and handles faults too: what is kept of those is removed at the end.
LONG WINAPI keep_at_a_fault(EXCEPTION_POINTERS* exception) {
  const DWORD code = exception->ExceptionRecord->ExceptionCode;
  if (code >= 0xC0000000 && code < 0xD0000000) keep_input();
  return EXCEPTION_CONTINUE_SEARCH;
}

// Ends the process when one input runs for ten seconds.
void watch() {
  std::thread([] {
    for (std::uint64_t before = ~std::uint64_t{0}; before != runs;
         std::this_thread::sleep_for(std::chrono::seconds(10)))
      before = runs;
    keep_input();
    std::fprintf(stderr, "an input does not come to its end\n");
    TerminateProcess(GetCurrentProcess(), finding_exit_code);
  }).detach();
}

std::string found_by(const fuzz::Core& core) try { return core.run(running); } catch (...) {
  return "an exception that the core does not expect";
}

bool reported(const std::string& difference) {
  if (!difference.empty()) std::fprintf(stderr, "difference: %s\n", difference.c_str());
  return !difference.empty();
}

bool finds_in(const fuzz::Core& core, double seconds, std::uint64_t seed, const char* corpus) {
  std::vector<fuzz::KeptInput> kept = fuzz::kept_inputs(corpus);
  const fuzz::Generator generator(kept, seed);
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  AddVectoredExceptionHandler(TRUE, keep_at_a_fault);
  watch();
  for (; Clock::now() < end; ++runs) {
    running = runs < kept.size() ? kept[runs].bytes : generator.input(runs);
    if (!reported(found_by(core))) continue;
    keep_input();
    return true;
  }
  std::remove(kept_as.c_str());
  std::printf("%llu inputs of seed %llu\n", static_cast<unsigned long long>(runs),
              static_cast<unsigned long long>(seed));
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const fuzz::Core* const core = argc > 1 ? fuzz::Core::named(argv[1]) : nullptr;
  if (!core || (argc != 3 && argc != 6)) {
    std::fprintf(stderr, "seeded_fuzz CORE (SECONDS SEED CORPUS_FOLDER FINDING | FILE)\n");
    return 2;
  }
  report_crashes();
  if (argc == 3) {
    std::ifstream file(argv[2], std::ios::binary);
    running.assign(std::istreambuf_iterator<char>(file), {});
    return reported(found_by(*core)) ? finding_exit_code : 0;
  }
  kept_as = argv[5];
  return finds_in(*core, std::atof(argv[2]), std::strtoull(argv[3], nullptr, 10), argv[4]) ? finding_exit_code : 0;
}
