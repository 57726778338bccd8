#include <kexlib/imaging/buffer.h>

#include <support/bench.h>
#include <support/files.h>

#include <fstream>
#include <sstream>
#include <string>

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

const bench::Benchmark buffer_benchmark("buffer", measure_buffer);

}  // namespace
