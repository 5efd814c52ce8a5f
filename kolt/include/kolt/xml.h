/* SPDX-License-Identifier: Apache-2.0 */
/* XML configuration documents: a parser, the tree it makes, and elements that other libraries add.
 *
 * A document is rooted at the element `dds`. Every element becomes a DDS_XMLObject with its tag
 * name, attributes, text, children and line; an element whose tag name an extension class is
 * registered for becomes the object that the class makes, and what stands inside that element goes
 * to the class's callbacks instead of into the tree.
 *
 *  1. A document is refused, with file, line and reason, when it
 *      - is not well formed, or has another root element;
 *      - has an encoding other than UTF-8, UTF-16, ISO-8859-1 and US-ASCII;
 *      - has a document type declaration with content (entities above all), or refers to an
 *        undeclared entity;
 *      - exceeds the limits below.
 *     A parse needs memory in proportion to the document, never more than these limits allow.
 *     Nothing outside the document is ever read on its behalf.
 *  2. The first error ends the parse; no callback is called after it, and the tree is dropped.
 *  3. A parser and all that it made belong to one thread at a time.
 *  4. Texts are in UTF-8 and are handed over as they stand, white space included. Line ends become
 *     line feeds and character references are replaced, as in every XML parser.
 */
#pragma once

#include <stdio.h>

#include "kolt/infrastructure.h"
#include "kolt/sequence.h"

KOLT_EXTERN_C_BEGIN

/* ---- Limits -------------------------------------------------------------------------------- */

#define DDS_XML_MAX_DEPTH 64               /* elements inside one another, the root included */
#define DDS_XML_MAX_DOCUMENT_SIZE 4194304U /* bytes of a document */
#define DDS_XML_MAX_TEXT_LENGTH 1048576U   /* bytes of the text of one element */
#define DDS_XML_MAX_ELEMENTS 100000U       /* elements of a document */

/* ---- Parse context ------------------------------------------------------------------------- */

/* Tells a callback about the parse in progress. A callback that finds something wrong either
 * sets `error` to 1, having reported the reason in its own way, or calls
 * DDS_XMLContext_report_error; the parse then ends. Code that calls such a callback itself makes a
 * context with DDS_XML_CONTEXT_INITIALIZER. */
typedef struct DDS_XMLContext {
    int error; /* 1: the parse has failed */
    DDS_UnsignedLong _line_number;
    const char *_source_name;
    char _message[256];
} DDS_XMLContext;
#define DDS_XML_CONTEXT_INITIALIZER \
    { 0, 0U, "", "" }

/* The line that the parser has reached, from 1: in a start callback the line where the start tag
 * begins, in an end callback that of the end tag. 0 for NULL and when no parser is at work. */
KOLT_EXPORT DDS_UnsignedLong DDS_XMLContext_get_current_line_number(const DDS_XMLContext *context);
/* The path of the document, or the name that the caller of DDS_XMLParser_parse_string gave it.
 * Never NULL. Valid during the parse. */
KOLT_EXPORT const char *DDS_XMLContext_get_source_name(const DDS_XMLContext *context);
/* Sets `error`, and remembers the text (cut at 255 bytes) unless an error was reported before: the
 * first one wins. NULL arguments are ignored. */
KOLT_EXPORT void DDS_XMLContext_report_error(DDS_XMLContext *context, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;
/* The remembered text, owned by the context; "" when there is none. */
KOLT_EXPORT const char *DDS_XMLContext_get_error_message(const DDS_XMLContext *context);

/* ---- Save context -------------------------------------------------------------------------- */

/* Receives a document that is written: in memory or in a file of the caller's. Writers keep
 * `depth` (the number of open elements), write each element on a line of its own at that depth, and
 * set `error` to 1 when something cannot be written. */
typedef struct DDS_XMLSaveContext {
    DDS_Long depth;
    int error;
    FILE *_file; /* NULL: into memory */
    char *_text;
    size_t _length;
    size_t _capacity;
    DDS_Boolean _failed; /* output was lost; nothing more is written */
} DDS_XMLSaveContext;

/* Blanks of indentation for each level of depth. */
#define DDS_XML_INDENT_WIDTH 4

/* An empty text in memory. For a fresh record; false for NULL. */
KOLT_EXPORT DDS_Boolean DDS_XMLSaveContext_initialize(DDS_XMLSaveContext *self);
/* The same with a file open for writing, which stays the caller's. */
KOLT_EXPORT DDS_Boolean DDS_XMLSaveContext_initialize_w_file(DDS_XMLSaveContext *self, FILE *file);
/* Frees the text. False for NULL. */
KOLT_EXPORT DDS_Boolean DDS_XMLSaveContext_finalize(DDS_XMLSaveContext *self);
/* Returns the text written so far, owned by the context and valid until the next write; "" when
 * nothing was written, and for a context with a file. */
KOLT_EXPORT const char *DDS_XMLSaveContext_get_text(const DDS_XMLSaveContext *self);
/* Writes the indentation for the present depth; none when it is negative. */
KOLT_EXPORT void DDS_XMLSaveContext_indent(DDS_XMLSaveContext *self);
/* Writes formatted text as it is, without escaping anything. Output that is lost (no memory, a file
 * that fails) sets `error`. */
KOLT_EXPORT void DDS_XMLSaveContext_freeform(DDS_XMLSaveContext *self, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;
/* Writes text with the characters that mean something in XML (& < > " and carriage return) escaped.
 * Bytes that no XML document can hold set `error`. */
KOLT_EXPORT void DDS_XMLSaveContext_escaped(DDS_XMLSaveContext *self, const char *text);

/* ---- Objects ------------------------------------------------------------------------------- */

typedef struct DDS_XMLExtensionClass DDS_XMLExtensionClass;

/* An element. A record of an extension class embeds one as its first member. The fields are
 * private. */
typedef struct DDS_XMLObject {
    struct DDS_XMLExtensionClass *_extension_class; /* NULL: an object of the parser's own */
    struct DDS_XMLObject *_parent;
    struct DDS_XMLObject *_first_child;
    struct DDS_XMLObject *_last_child;
    struct DDS_XMLObject *_previous_sibling;
    struct DDS_XMLObject *_next_sibling;
    char *_tag_name;    /* owned */
    char **_attributes; /* owned, one block: name, value, ..., NULL; NULL when there are none */
    char *_text;        /* owned; NULL when there is none */
    DDS_UnsignedLong _line_number;
} DDS_XMLObject;

/* Makes an object in memory of any content and appends it to the children of `parent` (NULL: it has
 * none). The tag name is copied, and so are `attributes` (name, value, name, value, ..., NULL;
 * itself NULL: none). `extension_class` may be NULL; it must outlive the object. False, with
 * nothing left behind, for a NULL `self` or tag name or when memory runs out. */
KOLT_EXPORT DDS_Boolean DDS_XMLObject_initialize(DDS_XMLObject *self,
                                                 DDS_XMLExtensionClass *extension_class,
                                                 DDS_XMLObject *parent, const char *tag_name,
                                                 const char *const *attributes);
/* Takes the object out of its parent's children, deletes its own children and frees what it owns,
 * but not the record itself. NULL, a record of zero bytes and a finalised one are left alone. */
KOLT_EXPORT void DDS_XMLObject_finalize(DDS_XMLObject *self);

/* The getters below give NULL (or 0) for NULL; what they return belongs to the object. */
KOLT_EXPORT const char *DDS_XMLObject_get_tag_name(const DDS_XMLObject *self);
/* The text of the element, that of its children left out; "" when there is none. Objects of
 * extension classes have none. */
KOLT_EXPORT const char *DDS_XMLObject_get_text(const DDS_XMLObject *self);
/* An attribute's value; NULL when the element has no such attribute. */
KOLT_EXPORT const char *DDS_XMLObject_get_attribute(const DDS_XMLObject *self, const char *name);
/* All attributes: name, value, name, value, ..., NULL. NULL when there are none. */
KOLT_EXPORT const char *const *DDS_XMLObject_get_attributes(const DDS_XMLObject *self);
KOLT_EXPORT DDS_XMLObject *DDS_XMLObject_get_parent(const DDS_XMLObject *self);
KOLT_EXPORT DDS_XMLObject *DDS_XMLObject_get_first_child(const DDS_XMLObject *self);
KOLT_EXPORT DDS_XMLObject *DDS_XMLObject_get_next_sibling(const DDS_XMLObject *self);
/* The first child with that tag name; NULL when there is none. */
KOLT_EXPORT DDS_XMLObject *DDS_XMLObject_find_child(const DDS_XMLObject *self,
                                                    const char *tag_name);
KOLT_EXPORT DDS_XMLExtensionClass *DDS_XMLObject_get_extension_class(const DDS_XMLObject *self);
/* The line of the element's start tag, from 1; 0 for an object that no parser made. */
KOLT_EXPORT DDS_UnsignedLong DDS_XMLObject_get_line_number(const DDS_XMLObject *self);
/* Writes the element and all below it; an object of an extension class writes itself (nothing when
 * the class cannot save). False when the context's error flag is set afterwards, and for a NULL. */
KOLT_EXPORT DDS_Boolean DDS_XMLObject_save(const DDS_XMLObject *self, DDS_XMLSaveContext *context);

/* ---- Extension classes --------------------------------------------------------------------- */

/* The system's error number (errno) is 0 when a callback begins, so that one that converts a number
 * with the C library and looks at it sees its own conversion's range error and nobody else's. */

/* Makes the object of an element: a record that embeds a DDS_XMLObject and has called
 * DDS_XMLObject_initialize with `parent`. NULL fails the parse. `attributes` are those of the start
 * tag (name, value, ..., NULL), valid during the call. */
typedef DDS_XMLObject *(*DDS_XMLExtensionClass_NewFunction)(DDS_XMLExtensionClass *extension_class,
                                                            DDS_XMLObject *parent,
                                                            const char **attributes,
                                                            DDS_XMLContext *context);
/* Releases an object: DDS_XMLObject_finalize, and the record. */
typedef void (*DDS_XMLExtensionClass_DeleteFunction)(DDS_XMLObject *self);
/* A start tag below the object's element, at any depth. */
typedef void (*DDS_XMLExtensionClass_OnStartElementFunction)(DDS_XMLObject *self,
                                                             const char *tag_name,
                                                             const char **attributes,
                                                             DDS_XMLContext *context);
/* An end tag below the object's element, and at last its own. `element_text` is the text of the
 * element that ends, that of its children left out; "" for an empty element. Valid during the call.
 */
typedef void (*DDS_XMLExtensionClass_OnEndElementFunction)(DDS_XMLObject *self,
                                                           const char *tag_name,
                                                           const char *element_text,
                                                           DDS_XMLContext *context);
/* Writes the object's element. */
typedef void (*DDS_XMLExtensionClass_SaveFunction)(const DDS_XMLObject *self,
                                                   DDS_XMLSaveContext *context);

/* A class for the elements of one tag name. The element may stand only directly below an element
 * named in `parent_tag_names` (`parent_count` names, copied); NULL and 0: below any. `user_data` is
 * borrowed. `new_object` and `delete_object` are required, the other callbacks may be NULL. NULL
 * for a missing tag name or required callback, and when memory runs out. Delete the class with
 * DDS_XMLExtensionClass_delete, after every parser it was registered with. */
KOLT_EXPORT DDS_XMLExtensionClass *DDS_XMLExtensionClass_new(
    const char *tag_name, void *user_data, const char *const *parent_tag_names,
    DDS_UnsignedLong parent_count, DDS_XMLExtensionClass_OnStartElementFunction on_start_element,
    DDS_XMLExtensionClass_OnEndElementFunction on_end_element,
    DDS_XMLExtensionClass_NewFunction new_object,
    DDS_XMLExtensionClass_DeleteFunction delete_object, DDS_XMLExtensionClass_SaveFunction save);
/* NULL is ignored. */
KOLT_EXPORT void DDS_XMLExtensionClass_delete(DDS_XMLExtensionClass *self);
/* Return the arguments of DDS_XMLExtensionClass_new; NULL for NULL. */
KOLT_EXPORT void *DDS_XMLExtensionClass_get_user_data(const DDS_XMLExtensionClass *self);
KOLT_EXPORT const char *DDS_XMLExtensionClass_get_tag_name(const DDS_XMLExtensionClass *self);

/* ---- Parser -------------------------------------------------------------------------------- */

typedef struct DDS_XMLParser DDS_XMLParser;

/* NULL when memory runs out. */
KOLT_EXPORT DDS_XMLParser *DDS_XMLParser_new(void);
/* Deletes the parser and the tree. NULL is ignored. */
KOLT_EXPORT void DDS_XMLParser_delete(DDS_XMLParser *self);
/* From the next parse on. The class is borrowed and must outlive the parser. PRECONDITION_NOT_MET
 * when the tag name has a class already; BAD_PARAMETER for NULL and for the tag name "dds". */
KOLT_EXPORT DDS_ReturnCode_t
DDS_XMLParser_register_extension_class(DDS_XMLParser *self, DDS_XMLExtensionClass *extension_class);
/* Parses a document, in place of the one that the parser held before. `path` is a path or a file
 * URL ("file://" and an absolute path, %xx decoded). ERROR when the document cannot be read or is
 * wrong: the getters below then say why, a message (category PLATFORM) is logged, and the root is
 * NULL. OUT_OF_RESOURCES when memory runs out. */
KOLT_EXPORT DDS_ReturnCode_t DDS_XMLParser_parse_file(DDS_XMLParser *self, const char *path);
/* The same with a document in memory: `length` bytes, or up to the terminator when `length` is
 * negative. `source_name` takes the place of the path in messages; NULL: "string". */
KOLT_EXPORT DDS_ReturnCode_t DDS_XMLParser_parse_string(DDS_XMLParser *self, const char *text,
                                                        DDS_LongLong length,
                                                        const char *source_name);
/* The element `dds` of the document parsed last; NULL when there is none. It and all below it
 * belong to the parser. */
KOLT_EXPORT DDS_XMLObject *DDS_XMLParser_get_root(const DDS_XMLParser *self);
/* "" when the last parse succeeded. Valid until the next parse. */
KOLT_EXPORT const char *DDS_XMLParser_get_error_message(const DDS_XMLParser *self);
/* The line of the error, from 1; 0 when there is none or it has no place in the document. */
KOLT_EXPORT DDS_UnsignedLong DDS_XMLParser_get_error_line(const DDS_XMLParser *self);

/* ---- Helpers ------------------------------------------------------------------------------- */

/* Converts a boolean: true, false (any letter case), 1 or 0, with white space around it. On
 * anything else the result is false, `*boolean` stays as it was, and the error goes to `context`
 * (which may be NULL). */
KOLT_EXPORT DDS_Boolean DDS_XMLHelper_str_to_boolean(DDS_Boolean *boolean, const char *text,
                                                     DDS_XMLContext *context);

/* The actions of DDS_XMLHelper_save_tag, as a set of bits. */
#define DDS_XML_TAG_INDENT 0x01  /* write the indentation before the tag */
#define DDS_XML_TAG_NEWLINE 0x02 /* write a line feed after the tag */
#define DDS_XML_TAG_OPEN 0x04    /* write a start tag, then raise the depth */
#define DDS_XML_TAG_CLOSE 0x08   /* write an end tag */
#define DDS_XML_TAG_LOWER 0x10   /* lower the depth, before anything is written */
/* A start tag and an end tag, each on a line of its own. */
#define DDS_XML_OPEN_TAG (DDS_XML_TAG_INDENT | DDS_XML_TAG_NEWLINE | DDS_XML_TAG_OPEN)
#define DDS_XML_CLOSE_TAG \
    (DDS_XML_TAG_INDENT | DDS_XML_TAG_NEWLINE | DDS_XML_TAG_CLOSE | DDS_XML_TAG_LOWER)

/* The writers below do nothing when the tag name or the context is NULL. */
KOLT_EXPORT void DDS_XMLHelper_save_tag(const char *tag_name, DDS_Long flags,
                                        DDS_XMLSaveContext *context);
/* One line: "<tag>value</tag>" at the present depth. With a `default_value` (not NULL) a value that
 * equals it is left out, unless `save_default` is true. */
KOLT_EXPORT void DDS_XMLHelper_save_long(const char *tag_name, DDS_Long value,
                                         const DDS_Long *default_value, DDS_Boolean save_default,
                                         DDS_XMLSaveContext *context);
/* The same for a text, which is escaped. A NULL value is written as the empty element. */
KOLT_EXPORT void DDS_XMLHelper_save_string(const char *tag_name, const char *value,
                                           const char *default_value, DDS_Boolean save_default,
                                           DDS_XMLSaveContext *context);
/* A list as children named `element`, one a line; an empty list (or NULL) as "<tag></tag>" on one
 * line. A list that equals `default_value` (not NULL) is left out. */
KOLT_EXPORT void DDS_XMLHelper_save_long_seq(const char *tag_name, const DDS_LongSeq *value,
                                             const DDS_LongSeq *default_value,
                                             DDS_XMLSaveContext *context);

KOLT_EXTERN_C_END
