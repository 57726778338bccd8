// The calls that the PNG thread and the screen capture make to the encoder. Different options may write the same file,
// so this program compiles the units with an encoder that records its calls.
#include <gtest/gtest.h>

#include <kexlib/imaging/png_thread.h>
#include <kexlib/imaging/screen_capture.h>

#include <rqgfx/png_writer.h>
#include <support/files.h>

#include <memory>
#include <string>

namespace {

struct Call {
  int count = 0;
  hnDuctImage* image = nullptr;
  std::string path;
  int filter = 0, bits = 0;
} call;

void record(hnDuctImage* image, const char* path, int filter, int bits) {
  call = {call.count + 1, image, path, filter, bits};
}

}  // namespace

hnDuctImage::hnDuctImage(int width, int height, bool has_alpha)
    : width_(width), height_(height), has_alpha_(has_alpha) {}
hnDuctImage::~hnDuctImage() = default;

hnDuctImage* rq_duct_image_from_dib(HBITMAP) { return new hnDuctImage(1, 1, false); }

int rqPNGWriterDuctImage::write_file(hnDuctImage* image, Sink sink, void* context, int filter, int bits) {
  record(image, "", filter, bits);
  const unsigned char bytes[] = {'P', 'N', 'G'};
  sink(context, bytes, sizeof bytes);
  if (image->has_alpha()) throw 1;
  return 1;
}

int rqPNGWriterDuctImage::write_file(hnDuctImage* image, const bzString& path, int filter, int bits) {
  record(image, path.c_str(), filter, bits);
  return 1;
}

namespace {

class PngThreadEncoder : public testing::Test {
 protected:
  PngThreadEncoder() { call = {}; }

  TemporaryFolder folder_;
  hnDuctImage image_{1, 1, false};
};

TEST_F(PngThreadEncoder, ABufferIsEncodedToWithTheOptions1And32) {
  const auto buffer = kexBuffer_create();
  kexPNGGenerationThread::write_image(&image_, "picture.png", buffer);
  EXPECT_EQ(call.count, 1);
  EXPECT_EQ(call.image, &image_);
  EXPECT_EQ(call.filter, 1);
  EXPECT_EQ(call.bits, 32);
  EXPECT_EQ(buffer->size(), 3u);
  EXPECT_EQ(read_file("picture.png"), "PNG");
}

TEST_F(PngThreadEncoder, AFileIsEncodedToWithTheOptions1And32) {
  kexPNGGenerationThread::write_image(&image_, "picture.png", nullptr);
  EXPECT_EQ(call.count, 1);
  EXPECT_EQ(call.image, &image_);
  EXPECT_EQ(call.path, "picture.png");
  EXPECT_EQ(call.filter, 1);
  EXPECT_EQ(call.bits, 32);
}

TEST_F(PngThreadEncoder, TheScreenIsEncodedWithTheEncodersDefaults) {
  CString path("screen.png");
  EXPECT_EQ(kex_screen_to_file(path), S_OK);
  EXPECT_EQ(call.count, 1);
  EXPECT_EQ(call.path, "screen.png");
  EXPECT_EQ(call.filter, -1);
  EXPECT_EQ(call.bits, -1);
}

TEST_F(PngThreadEncoder, AnEncoderThatThrowsLeavesTheBufferClosedAndTheThreadEndsInOrder) {
  const auto buffer = kexBuffer_create();
  kexPNGGenerationThread job(std::make_unique<hnDuctImage>(1, 1, true), "picture.png", buffer);
  EXPECT_EQ(job.Resume(), 1u);
  EXPECT_EQ(job.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(job.GetExitCode(), 0u);
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_EQ(buffer->size(), 3u);
}

}  // namespace
