// The installed pump, under the names that the tests use.
#ifndef TESTS_SUPPORT_MESSAGE_PUMP_H
#define TESTS_SUPPORT_MESSAGE_PUMP_H

#include <kexlib/testing/message_pump.h>

using kexlib::testing::pump_dialog_until;
using kexlib::testing::pump_until;
using kexlib::testing::pump_waiting;

#endif
