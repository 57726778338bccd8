#include <kexlib/imaging/buffer.h>

#include <support/bench.h>
#include <support/files.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

void measure_appending(int size, int count) {
  const std::string piece(static_cast<size_t>(size), 'x');
  bench::Comparison work("appending " + std::to_string(size) + " bytes, " + std::to_string(count) + " times");
  work.add("library", [&] {
    auto buffer = kexBuffer_create();
    return bench::nanoseconds_each(count, [&] { buffer->write(piece.data(), piece.size()); });
  });
  work.add("std::ostringstream", [&] {
    std::ostringstream stream;
    return bench::nanoseconds_each(count,
                                   [&] { stream.write(piece.data(), static_cast<std::streamsize>(piece.size())); });
  });
  work.run();
  bench::at_most(1.05, work.ratio("library", "std::ostringstream"),
                 {.name = "appending " + std::to_string(size) + " bytes",
                  .compared = "kexBuffer::write, of the time of a std::ostringstream",
                  .reason = "a string stream is the usual growing buffer, and cannot be shared with a reader"});
}

void measure_writing() {
  TemporaryFolder folder;
  const std::string bytes(16 << 20, 'x');
  auto buffer = kexBuffer_create();
  buffer->write(bytes.data(), bytes.size());
  buffer->close();
  bench::Comparison work("writing 16 MB");
  work.add("library, file", [&] { return bench::nanoseconds_each(1, [&] { buffer->write_to_file("buffer.bin"); }); });
  work.add("the same bytes, file", [&] {
    return bench::nanoseconds_each(1, [&] {
      std::ofstream file("bytes.bin", std::ios::binary | std::ios::trunc);
      file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
  });
  const auto archived = [](const char* name, auto store) {
    CFile file(name, CFile::modeCreate | CFile::modeWrite);
    return bench::nanoseconds_each(1, [&] {
      CArchive archive(&file, CArchive::store);
      store(archive);
      archive.Close();
    });
  };
  work.add("library, archive",
           [&] { return archived("buffer.archive", [&](CArchive& archive) { buffer->serialize(archive); }); });
  work.add("the same bytes, archive", [&] {
    return archived("bytes.archive", [&](CArchive& archive) {
      archive << static_cast<DWORD>(bytes.size());
      archive.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    });
  });
  work.run();
  bench::at_most(
      1.10, work.ratio("library, file", "the same bytes, file"),
      {.name = "16 MB written to a file",
       .compared = "kexBuffer::write_to_file, of the time of a std::ofstream with the same bytes in one piece",
       .reason = "one write of contiguous bytes is the least"});
  bench::at_most(1.10, work.ratio("library, archive", "the same bytes, archive"),
                 {.name = "16 MB written to an archive",
                  .compared = "kexBuffer::serialize, of the time of one CArchive::Write of the same bytes",
                  .reason = "an object of an MFC program that has contiguous bytes stores them so"});
}

void measure_buffer() {
  measure_appending(64, 200000);
  measure_appending(8192, 2000);
  measure_writing();
}

std::string reader_file(std::size_t reader) { return "reader" + std::to_string(reader); }

// Several threads wait for a buffer and write it to a file each, while it is filled and closed.
double nanoseconds_a_byte(std::size_t size, std::size_t readers) {
  const std::string piece(std::min<std::size_t>(size, 64 << 10), 'x');
  auto buffer = kexBuffer_create();
  for (std::size_t written = 0; written < size; written += piece.size()) buffer->write(piece.data(), piece.size());
  buffer->close();
  std::vector<std::thread> threads;
  const double time = bench::nanoseconds_each(1, [&] {
    for (std::size_t i = 0; i < readers; ++i)
      threads.emplace_back([&, i] { buffer->write_to_file(reader_file(i).c_str()); });
    for (std::thread& thread : threads) thread.join();
  });
  // The next round must not pay for the truncation of these.
  for (std::size_t i = 0; i < readers; ++i) std::filesystem::remove(reader_file(i));
  return time / static_cast<double>(size) / static_cast<double>(readers);
}

void grow_buffers() {
  TemporaryFolder folder;
  const std::vector<std::size_t> sizes = {1 << 10, 16 << 10, 256 << 10, 4 << 20, 64 << 20, 256 << 20};
  bench::grow({.name = "appended, 64 KB at once",
               .x = "bytes of a buffer",
               .y = "nanoseconds a byte",
               .sizes = sizes,
               .own_exponent = 0,
               .explained = "",
               .measure = [](std::size_t size) {
                 const std::string piece(std::min<std::size_t>(size, 64 << 10), 'x');
                 auto buffer = kexBuffer_create();
                 const int pieces = static_cast<int>(size / piece.size());
                 return bench::nanoseconds_each(pieces, [&] { buffer->write(piece.data(), piece.size()); }) /
                        static_cast<double>(piece.size());
               }});
  for (const unsigned readers : {1U, 4U, 16U})
    bench::grow({.name = "written to files by " + std::to_string(readers) + (readers == 1 ? " reader" : " readers"),
                 .x = "bytes of a buffer",
                 .y = "nanoseconds a byte",
                 .sizes = sizes,
                 .own_exponent = 0,
                 .explained = "",
                 .measure = [=](std::size_t size) { return nanoseconds_a_byte(size, readers); },
                 .rounds = 3});
}

const bench::Growth buffers_growth("buffers", grow_buffers);
const bench::Benchmark buffer_benchmark("buffer", measure_buffer);

}  // namespace
