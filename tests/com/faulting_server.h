// How faulting_server.exe ends.
#ifndef TESTS_COM_FAULTING_SERVER_H
#define TESTS_COM_FAULTING_SERVER_H

enum FaultingServerResult : unsigned {
  no_fault = 10,
  became_a_failure = 11,     // the caller got a failing HRESULT
  reached_the_caller = 12,   // the caller caught the C++ exception
  unhandled_violation = 13,  // the process ended with an access violation
  unhandled_exception = 14   // the process ended with a C++ exception
};

#endif
