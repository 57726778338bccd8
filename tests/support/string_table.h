// The identifiers of string_table.rc.
#ifndef TESTS_SUPPORT_STRING_TABLE_H
#define TESTS_SUPPORT_STRING_TABLE_H

#define IDS_BASE 1000
#define IDS_FIRST 1000
#define IDS_FIFTH 1005
#define IDS_ACCENTS 1012
#define IDS_LONG 1100

#endif
