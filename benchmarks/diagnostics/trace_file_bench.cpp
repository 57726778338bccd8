#include <kexlib/diagnostics/trace_file.h>

#include <windows.h>

#include <support/bench.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#ifdef BENCH_WITH_PEERS
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr int lines = 2000;

// The hand-written alternative: format into a buffer, write, flush.
void trace_to(std::ofstream& stream, const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  stream << text;
  stream.flush();
}

// The least that formats and writes.
void write_to(HANDLE file, const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  DWORD written;
  WriteFile(file, text, static_cast<DWORD>(length), &written, nullptr);
}

void measure_trace_line() {
  TemporaryFolder folder;
  DesktopFolder desktop(folder.path());
  bench::Comparison line("one traced line, flushed");

  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  line.add("library", [] {
    int i = 0;
    return bench::nanoseconds_each(lines, [&] { g_traceToFile.Trace("item %d of %d: %s\n", ++i, lines, "a name"); });
  });

  std::ofstream stream("stream.txt");
  line.add("vsnprintf, std::ofstream, flush", [&] {
    int i = 0;
    return bench::nanoseconds_each(lines, [&] { trace_to(stream, "item %d of %d: %s\n", ++i, lines, "a name"); });
  });

  const HANDLE raw = CreateFileA("raw.txt", GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
  line.add("raw write of the ready bytes", [&] {
    const std::string text = "item 1000 of 2000: a name\r\n";
    return bench::nanoseconds_each(lines, [&] {
      DWORD written;
      WriteFile(raw, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    });
  });

  line.add("vsnprintf, raw write", [&] {
    int i = 0;
    return bench::nanoseconds_each(lines, [&] { write_to(raw, "item %d of %d: %s\r\n", ++i, lines, "a name"); });
  });

#ifdef BENCH_WITH_PEERS
  const auto logger = spdlog::basic_logger_st("bench", "spdlog.txt");
  logger->set_pattern("%v");
  logger->flush_on(spdlog::level::info);
  line.add("spdlog, basic file sink, flush", [&] {
    int i = 0;
    return bench::nanoseconds_each(lines, [&] { logger->info("item {} of {}: {}", ++i, lines, "a name"); });
  });
#endif

  line.run();
  bench::at_most(1.10, line.ratio("library", "vsnprintf, std::ofstream, flush"),
                 {.name = "a traced line",
                  .compared = "CTraceToFile::Trace, of the time of vsnprintf and a std::ofstream that is flushed",
                  .reason = "a log file written by hand flushes each line, so that a crash loses none"});
  bench::at_most(1.1, line.ratio("library", "vsnprintf, raw write"),
                 {.name = "a traced line beside its parts",
                  .compared = "CTraceToFile::Trace, of the time of one vsnprintf and one WriteFile",
                  .reason = "nothing formats and writes a line with less",
                  .wanted = "1.03. Two to three percent go into making CR LF of the line break, as much into the call "
                            "of the DLL and its switches"});
#ifdef BENCH_WITH_PEERS
  bench::at_least(1.5, line.ratio("spdlog, basic file sink, flush", "library"),
                  {.name = "a traced line beside spdlog",
                   .compared = "CTraceToFile::Trace, times as fast as spdlog's basic file sink that is flushed",
                   .reason = "spdlog is the logging library that is in common use"});
  spdlog::shutdown();
#else
  bench::leave_out("a traced line beside spdlog", "libspdlog-dev is not installed");
#endif
  CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
  CloseHandle(raw);
}

const bench::Benchmark trace_line_benchmark("trace line", measure_trace_line);

}  // namespace
