/* SPDX-License-Identifier: Apache-2.0 */
/* Content filters: expressions over the fields of a sample, evaluated on serialised samples. They
 * serve content-filtered topics and query conditions (DDS 1.4, Annex B).
 *
 * Grammar, keywords in any letter case:
 *
 *   expression  comparisons joined by AND, OR, NOT and parentheses; NOT binds closest, then AND
 *   comparison  side = | <> | != | < | <= | > | >= side
 *               side [NOT] LIKE side
 *               field [NOT] BETWEEN side AND side (ends included)
 *   side        a field, a constant or a parameter; one of a comparison's sides at least is a field
 *   field       member names joined by dots, with [n] behind arrays ([n][m] for each dimension) and
 *               sequences, counted from 0: command.filterLevel, vurLoggerVerbosities[2].category
 *   constant    integer 5, -5, 0x1F; real 0.5, 1e3; 'string' or 'c', a quote doubled: 'it''s';
 *               TRUE, FALSE; an enumerator, quoted or (where no member has its name) bare
 *   parameter   %0 to %99: a text that is given with the expression and may be replaced
 *
 * Numbers compare by value, whatever their types; enumerations also with integers; booleans also
 * with 0 and 1; strings and characters by their bytes. A real constant is rounded to single
 * precision when the field is. In a LIKE pattern % and * stand for any characters, also none, _ and
 * ? for any one; a backslash makes the next character stand for itself.
 *
 * A comparison with a field that the sample does not have (an optional member that is not set, a
 * branch of a union that is not selected, an element past the end of a sequence) is false, <> and
 * NOT LIKE included.
 *
 * A parameter's text is written as it would be in the expression. For strings, characters and
 * enumerations the quotes may be left out; the text is then taken as it stands, blanks included.
 */
#pragma once

#include "kolt/typecode.h"

KOLT_EXTERN_C_BEGIN

typedef struct KOLT_Filter KOLT_Filter;

/* Says why an expression or a parameter was refused. */
typedef struct KOLT_FilterError {
    DDS_UnsignedLong column; /* in the expression, from 1; 0: the error has no place in it */
    DDS_Char text[244];      /* terminated; cut when longer */
} KOLT_FilterError;

/* Compiles an expression over the structure `type`, which must outlive the filter, with
 * `parameter_count` (0 to 100) parameters, which are copied. NULL when the expression or a
 * parameter is wrong for the type, an argument is NULL or memory runs out; `error`, unless NULL,
 * then says what and where. Delete the filter with KOLT_Filter_delete. */
KOLT_EXPORT KOLT_Filter *KOLT_Filter_new(const DDS_TypeCode *type, const DDS_Char *expression,
                                         const DDS_Char *const *parameters,
                                         DDS_UnsignedLong parameter_count, KOLT_FilterError *error);
/* Frees the filter, which no thread may be using. NULL is ignored. */
KOLT_EXPORT void KOLT_Filter_delete(KOLT_Filter *self);
/* True when the serialised sample, which begins with its encapsulation header, matches. False for a
 * sample that does not, or whose fields cannot be read because it is malformed, and for NULLs.
 * Thread-safe, also with KOLT_Filter_set_parameters. */
KOLT_EXPORT DDS_Boolean KOLT_Filter_matches(const KOLT_Filter *self, const DDS_Octet *bytes,
                                            size_t length);
/* Replaces all parameters, also while other threads evaluate. False, with `error` (unless NULL)
 * filled and the old parameters in force, when one that the expression uses is missing or does not
 * go with the field that it is compared with. Thread-safe. */
KOLT_EXPORT DDS_Boolean KOLT_Filter_set_parameters(KOLT_Filter *self,
                                                   const DDS_Char *const *parameters,
                                                   DDS_UnsignedLong parameter_count,
                                                   KOLT_FilterError *error);
/* The expression as it was given; property of the filter. NULL for NULL. */
KOLT_EXPORT const DDS_Char *KOLT_Filter_expression(const KOLT_Filter *self);
/* The number of parameters given, used or not; 0 for NULL. */
KOLT_EXPORT DDS_UnsignedLong KOLT_Filter_parameter_count(const KOLT_Filter *self);
/* A copy of a parameter's text, to be freed with DDS_String_free. NULL when there is no such
 * parameter or memory runs out. */
KOLT_EXPORT DDS_Char *KOLT_Filter_get_parameter(const KOLT_Filter *self, DDS_UnsignedLong index);

KOLT_EXTERN_C_END
