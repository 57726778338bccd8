// The identifiers of resources.rc.
#ifndef TESTS_TEXT_RESOURCES_H
#define TESTS_TEXT_RESOURCES_H

#define IDS_BASE 1000
#define IDS_FIRST 1000
#define IDS_FIFTH 1005
#define IDS_ACCENTS 1012
#define IDS_LONG 1100

#endif
