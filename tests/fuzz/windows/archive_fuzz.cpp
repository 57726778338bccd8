// Buffers read from an archive that holds anything: the length, as many bytes as there are, zeros for the rest.
#include <kexlib/imaging/buffer.h>

#include <fuzz/core.h>

#include <algorithm>

namespace {

std::string stored(kexBuffer& buffer) {
  CMemFile file;
  CArchive archive(&file, CArchive::store);
  buffer.serialize(archive);
  archive.Close();
  std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
  file.SeekToBegin();
  file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
  return bytes;
}

const fuzz::Core core("archive", [](fuzz::Input& input) {
  constexpr std::uint64_t looked_at = 100000;
  const std::string after(input.text(input.below(4)));
  const unsigned loads = 1 + input.below(3);
  const std::string bytes(input.text());

  CMemFile file;
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  kexBuffer buffer;
  std::string expected;
  std::uint64_t size = 0;
  std::string_view rest = bytes;
  for (unsigned i = 0; i < loads; ++i) {
    bool ended = false;
    try {
      buffer.serialize(archive);
    } catch (CArchiveException* exception) {
      exception->Delete();
      ended = true;
    }
    fuzz::expect_same(ended, rest.size() < 4, "the end of the file", bytes);
    if (ended) break;
    std::uint32_t length;
    std::memcpy(&length, rest.data(), sizeof length);
    rest.remove_prefix(sizeof length);
    const std::string_view there = rest.substr(0, length);
    rest.remove_prefix(there.size());
    size += length;
    if (size > looked_at) break;  // zeros to the end; what follows would have to be written behind them
    expected += there;
    expected.resize(static_cast<std::size_t>(size), '\0');
  }
  if (size <= looked_at) {
    buffer.write(after.data(), after.size());
    expected += after;
    size += after.size();
  }
  fuzz::expect_same(buffer.fail(), false, bytes);
  fuzz::expect_same(static_cast<std::uint64_t>(buffer.size()), buffer.is_closed() ? size : 0, bytes);
  if (!buffer.is_closed() || size > looked_at) return;
  const std::string all = stored(buffer);
  std::uint32_t length = 0;
  std::memcpy(&length, all.data(), std::min(all.size(), sizeof length));
  fuzz::expect_same(std::uint64_t{length}, size, bytes);
  fuzz::expect_same(all.substr(4), expected, bytes);
});

}  // namespace
