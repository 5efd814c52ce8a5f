/* SPDX-License-Identifier: Apache-2.0 */
/* Print formats: the ways in which data are rendered as text (kolt/dynamic_data.h). */
#pragma once

#include "kolt/infrastructure.h"

KOLT_EXTERN_C_BEGIN

typedef enum DDS_PrintFormatKind KOLT_ENUM_BASE {
    DDS_DEFAULT_PRINT_FORMAT = 0, /* "name: value" lines, for people */
    DDS_XML_PRINT_FORMAT = 1,     /* one element a member */
    DDS_JSON_PRINT_FORMAT = 2     /* RFC 8259, one object a structure */
} DDS_PrintFormatKind;

/* The format that a caller asks for. */
typedef struct DDS_PrintFormatProperty {
    DDS_PrintFormatKind kind;
    DDS_Boolean pretty_print; /* new lines and indentation; without it everything is on one line */
    DDS_Boolean enum_as_int;  /* enumerations as numbers instead of their enumerators' names */
    /* XML and JSON: an element, or an object with one member, named after the type (its name
     * without the modules) around everything. */
    DDS_Boolean include_root_elements;
} DDS_PrintFormatProperty;

#define DDS_PRINT_FORMAT_PROPERTY_DEFAULT \
    { DDS_DEFAULT_PRINT_FORMAT, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE }

/* A checked property in the form that the formatter works with. */
typedef struct DDS_PrintFormat {
    DDS_PrintFormatKind kind;
    DDS_UnsignedLong indent_width; /* spaces a level */
    const char *new_line;          /* "\n", or "" for one line */
    DDS_Boolean enum_as_int;
    DDS_Boolean include_root_elements;
} DDS_PrintFormat;

/* Makes a format of a property. BAD_PARAMETER for a NULL or a kind that does not exist; the format
 * is then unchanged. */
KOLT_EXPORT DDS_ReturnCode_t DDS_PrintFormatProperty_to_print_format(
    const DDS_PrintFormatProperty *self, DDS_PrintFormat *format);

KOLT_EXTERN_C_END
