// Testing: help for the tests of applications with windows and COM objects.
//
//   code_place.h          the module, the function and the line of an address
//   counting_object.h     a COM object that counts its references
//   dialog_driver.h       does what a user does in modal dialogs
//   fault_observer.h      counts access violations that the system handles
//   message_pump.h        dispatches messages until something has happened
//   resource_balance.h    compares GDI objects, USER objects, kernel handles and COM references with those before
//   task_dialog_driver.h  reads task dialogs and presses their buttons
//   watchdog.h            ends a test that does not end by itself
//
// These headers need nothing of kexlib.dll and no test framework. What may find something wrong has a member problem():
// empty, or a sentence.
//
//     EXPECT_EQ(balance.problem(), "");                                        // GoogleTest
//     CHECK(balance.problem() == "");                                          // Catch
//     if (!balance.problem().empty()) std::puts(balance.problem().c_str());
//
// They are for sources with MFC or without: where windows.h was included before, they need no more than that.
#ifndef KEXLIB_TESTING_H
#define KEXLIB_TESTING_H

#include <kexlib/testing/code_place.h>
#include <kexlib/testing/counting_object.h>
#include <kexlib/testing/dialog_driver.h>
#include <kexlib/testing/fault_observer.h>
#include <kexlib/testing/message_pump.h>
#include <kexlib/testing/resource_balance.h>
#include <kexlib/testing/task_dialog_driver.h>
#include <kexlib/testing/watchdog.h>

#endif
