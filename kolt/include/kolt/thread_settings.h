/* SPDX-License-Identifier: Apache-2.0 */
/* Thread settings: priority, stack size and processors of the threads that a library starts. */
#pragma once

#include "kolt/infrastructure.h"
#include "kolt/sequence.h"

KOLT_EXTERN_C_BEGIN

/* Bits of DDS_ThreadSettingsKindMask. KOLT_Thread_new (kolt/os.h) describes them. */
typedef enum DDS_ThreadSettingsKind KOLT_ENUM_BASE {
    DDS_THREAD_SETTINGS_FLOATING_POINT = 0x01,
    DDS_THREAD_SETTINGS_STDIO = 0x02,
    DDS_THREAD_SETTINGS_REALTIME_PRIORITY = 0x08,
    DDS_THREAD_SETTINGS_PRIORITY_ENFORCE = 0x10
} DDS_ThreadSettingsKind;
typedef DDS_UnsignedLong DDS_ThreadSettingsKindMask;
#define DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT 0U

/* The six named priorities. On this platform each leaves the priority to the system. */
#define DDS_THREAD_PRIORITY_DEFAULT (-9999999)
#define DDS_THREAD_PRIORITY_HIGH DDS_THREAD_PRIORITY_DEFAULT
#define DDS_THREAD_PRIORITY_ABOVE_NORMAL DDS_THREAD_PRIORITY_DEFAULT
#define DDS_THREAD_PRIORITY_NORMAL DDS_THREAD_PRIORITY_DEFAULT
#define DDS_THREAD_PRIORITY_BELOW_NORMAL DDS_THREAD_PRIORITY_DEFAULT
#define DDS_THREAD_PRIORITY_LOW DDS_THREAD_PRIORITY_DEFAULT

/* The stack size that leaves it to the system. */
#define DDS_THREAD_STACK_SIZE_DEFAULT (-1)

/* How threads of one kind are spread over the processors of `cpu_list`. */
typedef enum DDS_ThreadSettingsCpuRotationKind KOLT_ENUM_BASE {
    DDS_THREAD_SETTINGS_CPU_NO_ROTATION = 0, /* every thread may run on each of them */
    DDS_THREAD_SETTINGS_CPU_RR_ROTATION = 1  /* one processor a thread, in turn */
} DDS_ThreadSettingsCpuRotationKind;

typedef struct DDS_ThreadSettings_t {
    DDS_ThreadSettingsKindMask mask;
    DDS_Long priority;    /* see KOLT_Thread_new */
    DDS_Long stack_size;  /* bytes, or DDS_THREAD_STACK_SIZE_DEFAULT */
    DDS_LongSeq cpu_list; /* processor numbers; empty: any. Owned by the record */
    DDS_ThreadSettingsCpuRotationKind cpu_rotation;
} DDS_ThreadSettings_t;

/* The default settings, as an initialiser. */
#define DDS_THREAD_SETTINGS_DEFAULT                                         \
    {                                                                       \
        DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT, DDS_THREAD_PRIORITY_DEFAULT, \
            DDS_THREAD_STACK_SIZE_DEFAULT, DDS_SEQUENCE_INITIALIZER,        \
            DDS_THREAD_SETTINGS_CPU_NO_ROTATION                             \
    }

/* Sets the defaults. The record's former content is overwritten, not released. False for NULL. */
KOLT_EXPORT DDS_Boolean DDS_ThreadSettings_t_initialize(DDS_ThreadSettings_t *self);
/* Releases the CPU list, which becomes empty. Repeating it is harmless. False for NULL. */
KOLT_EXPORT DDS_Boolean DDS_ThreadSettings_t_finalize(DDS_ThreadSettings_t *self);
/* Deep copy into an initialised record. Copying a record onto itself does nothing. False for a NULL
 * or when memory for the list runs out; the destination then keeps its old content. */
KOLT_EXPORT DDS_Boolean DDS_ThreadSettings_t_copy(DDS_ThreadSettings_t *self,
                                                  const DDS_ThreadSettings_t *source);
/* True when all members are equal, the lists element by element in order. A NULL equals nothing. */
KOLT_EXPORT DDS_Boolean DDS_ThreadSettings_is_equal(const DDS_ThreadSettings_t *left,
                                                    const DDS_ThreadSettings_t *right);

KOLT_EXTERN_C_END
