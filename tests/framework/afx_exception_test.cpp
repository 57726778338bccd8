// Exceptions of kexframework.dll: this program catches them by type and reads their texts.
#include <gtest/gtest.h>

#include <afxdisp.h>
#include <afxwin.h>

#include <string>
#include <typeinfo>

namespace {

struct Thrown {
  const std::type_info* type;
  std::string text;
};

// The exception that a call throws, caught as CException.
template <typename Call>
Thrown thrown_by(Call call) {
  try {
    call();
  } catch (CException* exception) {
    char text[200] = "";
    UINT help = 7;
    exception->GetErrorMessage(text, sizeof text, &help);
    EXPECT_EQ(help, 0u);
    Thrown thrown{&typeid(*exception), text};
    exception->Delete();
    return thrown;
  }
  return {&typeid(void), ""};
}

// Whether it is caught as exactly this type.
template <typename Type, typename Call>
bool throws(Call call) {
  try {
    call();
  } catch (Type* exception) {
    exception->Delete();
    return true;
  } catch (CException* exception) {
    exception->Delete();
  }
  return false;
}

TEST(Exception, IsCaughtByItsTypeInTheProgram) {
  EXPECT_TRUE(throws<CMemoryException>([] { AfxThrowMemoryException(); }));
  EXPECT_TRUE(throws<CInvalidArgException>([] { AfxThrowInvalidArgException(); }));
  EXPECT_TRUE(throws<CNotSupportedException>([] { AfxThrowNotSupportedException(); }));
  EXPECT_TRUE(throws<CResourceException>([] { AfxThrowResourceException(); }));
  EXPECT_TRUE(throws<CFileException>([] { AfxThrowFileException(CFileException::diskFull); }));
  EXPECT_TRUE(throws<CArchiveException>([] { AfxThrowArchiveException(CArchiveException::badClass); }));
  EXPECT_TRUE(throws<COleException>([] { AfxThrowOleException(E_FAIL); }));
  EXPECT_FALSE(throws<CArchiveException>([] { AfxThrowFileException(CFileException::diskFull); }));
}

TEST(Exception, IsCaughtByTheBaseWithItsTypeAndText) {
  Thrown memory = thrown_by([] { AfxThrowMemoryException(); });
  EXPECT_EQ(*memory.type, typeid(CMemoryException));
  EXPECT_EQ(memory.text, "Out of memory.");
  EXPECT_EQ(thrown_by([] { AfxThrowInvalidArgException(); }).text, "An invalid argument was given.");
  EXPECT_EQ(thrown_by([] { AfxThrowNotSupportedException(); }).text, "This is not supported.");
  EXPECT_EQ(thrown_by([] { AfxThrowResourceException(); }).text, "The system has no such resource left.");
  Thrown file = thrown_by([] { CFileException::ThrowOsError(ERROR_DISK_FULL, "a.txt"); });
  EXPECT_EQ(*file.type, typeid(CFileException));
  EXPECT_EQ(file.text, "The disk has no room for a.txt.");
  EXPECT_EQ(thrown_by([] { AfxThrowArchiveException(CArchiveException::badSchema, "b"); }).text,
            "b was written by another version.");
}

TEST(Exception, WithoutRoomForTheTextThereIsNone) {
  CInvalidArgException exception;
  char text[] = "kept";
  EXPECT_FALSE(exception.GetErrorMessage(text, 0));
  EXPECT_STREQ(text, "kept");
  EXPECT_FALSE(exception.GetErrorMessage(nullptr, 10));
  EXPECT_FALSE(CException().GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "");
}

TEST(Exception, OneThatIsNotMadeWithNewSurvivesDelete) {
  CInvalidArgException exception(false);
  exception.Delete();
  char text[40];
  EXPECT_TRUE(exception.GetErrorMessage(text, sizeof text));
}

}  // namespace
