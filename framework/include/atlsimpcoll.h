// A simple array.
#ifndef FRAMEWORK_ATLSIMPCOLL_H
#define FRAMEWORK_ATLSIMPCOLL_H

#include <atldef.h>

#include <new>
#include <vector>

namespace ATL {

// An array of a few elements.
template <class T>
class CSimpleArray {
 public:
  CSimpleArray() = default;

  int GetSize() const { return static_cast<int>(m_elements.size()); }
  // Appends a copy. FALSE if no memory is left.
  BOOL Add(const T& element) {
    try {
      m_elements.push_back(element);
    } catch (const std::bad_alloc&) {
      return FALSE;
    }
    return TRUE;
  }
  void RemoveAll() { m_elements.clear(); }

  T& operator[](int index) {
    ATLASSERT(index >= 0 && index < GetSize());
    return m_elements[static_cast<size_t>(index)];
  }
  const T& operator[](int index) const {
    ATLASSERT(index >= 0 && index < GetSize());
    return m_elements[static_cast<size_t>(index)];
  }
  // The first element; valid until an element is added or removed.
  T* GetData() { return m_elements.data(); }

 private:
  std::vector<T> m_elements;
};

}  // namespace ATL

#endif
