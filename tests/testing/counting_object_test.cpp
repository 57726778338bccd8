#include <gtest/gtest.h>

#include <kexlib/testing/counting_object.h>

#include <atlbase.h>
#include <objidl.h>
#include <oleidl.h>

#include <thread>

namespace {

using kexlib::testing::CountingObject;

// Two interfaces, one of which derives from a third.
class Sample : public CountingObject<IPersist, IOleWindow> {
 public:
  Sample() : CountingObject("the sample") {}
  STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetWindow(HWND*) override { return E_NOTIMPL; }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
};

class Stream : public CountingObject<IPersistStream> {
 public:
  STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }
  STDMETHODIMP IsDirty() override { return S_FALSE; }
  STDMETHODIMP Load(IStream*) override { return E_NOTIMPL; }
  STDMETHODIMP Save(IStream*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }

 protected:
  void* find_interface(REFIID id) override {
    return id == IID_IPersist ? static_cast<IPersist*>(this) : CountingObject::find_interface(id);
  }
};

TEST(TestingCountingObject, CountsWhatOthersHold) {
  CountingObject<> object;
  EXPECT_EQ(object.references(), 0);
  EXPECT_EQ(object.problem(), "");
  {
    const CComPtr<IUnknown> first(&object);
    EXPECT_EQ(object.references(), 1);
    const CComPtr<IUnknown> second(first);
    EXPECT_EQ(object.references(), 2);
    EXPECT_EQ(object.problem(), "2 references to the object not released");
  }
  EXPECT_EQ(object.references(), 0);
  EXPECT_EQ(object.most_references(), 2);
  EXPECT_EQ(object.added(), 2);
  EXPECT_EQ(object.problem(), "");
}

TEST(TestingCountingObject, ReturnsTheCountAsComDoes) {
  CountingObject<> object;
  EXPECT_EQ(object.AddRef(), 1u);
  EXPECT_EQ(object.AddRef(), 2u);
  EXPECT_EQ(object.Release(), 1u);
  EXPECT_EQ(object.Release(), 0u);
}

TEST(TestingCountingObject, SurvivesAReleaseTooOften) {
  CountingObject<> object("the sink");
  EXPECT_EQ(object.Release(), 0u);
  EXPECT_EQ(object.references(), -1);
  EXPECT_EQ(object.problem(), "1 reference to the sink released too often");
  object.Release();
  EXPECT_EQ(object.problem(), "2 references to the sink released too often");
  object.AddRef();
  object.AddRef();
  object.AddRef();
  EXPECT_EQ(object.problem(), "1 reference to the sink not released");
  object.Release();
}

TEST(TestingCountingObject, AnswersToItsInterfaces) {
  Sample sample;
  {
    void* found = nullptr;
    ASSERT_EQ(sample.QueryInterface(IID_IUnknown, &found), S_OK);
    EXPECT_EQ(found, static_cast<IPersist*>(&sample));
    ASSERT_EQ(sample.QueryInterface(IID_IPersist, &found), S_OK);
    EXPECT_EQ(found, static_cast<IPersist*>(&sample));
    ASSERT_EQ(sample.QueryInterface(IID_IOleWindow, &found), S_OK);
    EXPECT_EQ(found, static_cast<IOleWindow*>(&sample));
    EXPECT_EQ(sample.references(), 3);
    EXPECT_EQ(sample.QueryInterface(IID_IDispatch, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(sample.QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(sample.references(), 3);
  }
  EXPECT_EQ(sample.problem(), "3 references to the sample not released");
  for (int i = 0; i < 3; ++i) sample.Release();
}

TEST(TestingCountingObject, MayAnswerToMore) {
  Stream stream;
  {
    const CComQIPtr<IPersist> base(static_cast<IUnknown*>(&stream));
    EXPECT_EQ(base, static_cast<IPersist*>(&stream));
    const CComQIPtr<IPersistStream> whole(static_cast<IUnknown*>(&stream));
    EXPECT_EQ(whole, static_cast<IPersistStream*>(&stream));
    const CComQIPtr<IDispatch> none(static_cast<IUnknown*>(&stream));
    EXPECT_FALSE(none);
  }
  EXPECT_EQ(stream.problem(), "");
}

TEST(TestingCountingObject, CountsOnSeveralThreads) {
  CountingObject<> object;
  const auto hold_often = [&] {
    for (int i = 0; i < 10000; ++i) {
      object.AddRef();
      object.AddRef();
      object.Release();
    }
  };
  std::thread other(hold_often);
  hold_often();
  other.join();
  EXPECT_EQ(object.references(), 20000);
  EXPECT_EQ(object.most_references(), object.references() + (object.most_references() > 20000 ? 1 : 0));
  EXPECT_EQ(object.added(), 40000);
}

}  // namespace
