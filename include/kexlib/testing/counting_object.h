// A COM object for tests that counts its references.
//
//     class Sink : public CountingObject<IAdviseSink> {
//      public:
//       STDMETHODIMP_(void) OnClose() override { ++closed; }
//       ...                                               // the other members of the interface
//       int closed = 0;
//     };
//
//     Sink sink;                                          // the test owns it
//     {
//       Chart chart;
//       chart.advise(&sink);
//       EXPECT_EQ(sink.references(), 1);
//     }
//     EXPECT_EQ(sink.closed, 1);
//     EXPECT_EQ(sink.problem(), "");                      // all references were released, none twice
//
// CountingObject<> is an IUnknown; CountingObject<IPersistStream, IAdviseSink> has several interfaces. IUnknown and the
// interfaces that are named are found by their __uuidof. An object that answers to more, such as the IPersist that
// IPersistStream derives from, overrides find_interface.
//
// The object is never deleted by Release: it lives as long as the test says, so that the count can be read when all
// others have released it. It must outlive those who hold references.
//
// Threads. AddRef, Release and the counts may be called on any thread.
#ifndef KEXLIB_TESTING_COUNTING_OBJECT_H
#define KEXLIB_TESTING_COUNTING_OBJECT_H

#include <kexlib/windows.h>

#include <windows.h>
#include <unknwn.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <utility>

namespace kexlib::testing {

/// The counts of a CountingObject, without its interfaces.
class ReferenceCount {
 public:
  /// `name` is for the sentence of problem().
  explicit ReferenceCount(std::string name) : name_(std::move(name)) {}

  ReferenceCount(const ReferenceCount&) = delete;
  ReferenceCount& operator=(const ReferenceCount&) = delete;

  /// The references that others hold: 0 at first, negative if there were more releases than references.
  long references() const { return references_; }

  /// The most references that were held at once.
  long most_references() const { return most_; }

  /// The calls of AddRef, those by QueryInterface among them.
  long added() const { return added_; }

  /// The name that it was given.
  const std::string& name() const { return name_; }

  /// Empty if no reference is held, otherwise a sentence.
  std::string problem() const {
    const long left = references_;
    if (left == 0) return "";
    return std::to_string(std::labs(left)) + (left == 1 || left == -1 ? " reference" : " references") + " to " + name_ +
           (left > 0 ? " not released" : " released too often");
  }

 protected:
  ~ReferenceCount() = default;

  /// Counts a reference; returns how many there are.
  long add() {
    ++added_;
    const long now = ++references_;
    for (long most = most_; most < now && !most_.compare_exchange_weak(most, now);) continue;
    return now;
  }

  /// Counts a release; returns how many references are left.
  long subtract() { return --references_; }

 private:
  std::string name_;
  std::atomic<long> references_ = 0, most_ = 0, added_ = 0;
};

/// An object with these interfaces, whose other members the derived class has.
template <typename Interface = IUnknown, typename... More>
class CountingObject : public ReferenceCount, public Interface, public More... {
 public:
  /// `name` is for the sentence of problem().
  explicit CountingObject(std::string name = "the object") : ReferenceCount(std::move(name)) {}

  virtual ~CountingObject() = default;

  /// As COM demands it: E_NOINTERFACE with a null pointer where find_interface finds nothing, E_POINTER without a place
  /// for the pointer.
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = find_interface(id);
    if (!*object) return E_NOINTERFACE;
    add();
    return S_OK;
  }

  /// Counts a reference.
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(add()); }

  /// Counts a release. Deletes nothing; returns 0 for a release too often too.
  STDMETHODIMP_(ULONG) Release() override {
    const long left = subtract();
    return left > 0 ? static_cast<ULONG>(left) : 0;
  }

 protected:
  /// The interface with this identifier, which is not counted yet; null if there is none. An override answers to its
  /// own identifiers, and calls this one for the rest:
  ///
  ///     void* find_interface(REFIID id) override {
  ///       return id == IID_IPersist ? static_cast<IPersist*>(this) : CountingObject::find_interface(id);
  ///     }
  virtual void* find_interface(REFIID id) {
    void* found = nullptr;
    if (IsEqualGUID(id, __uuidof(IUnknown)) || IsEqualGUID(id, __uuidof(Interface)))
      found = static_cast<Interface*>(this);
    ((found = !found && IsEqualGUID(id, __uuidof(More)) ? static_cast<More*>(this) : found), ...);
    return found;
  }
};

}  // namespace kexlib::testing

#endif
