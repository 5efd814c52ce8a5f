/* SPDX-License-Identifier: Apache-2.0 */
/* A program that unloads the logger's library while the logger runs. Usage: unload <libvur_dl.so>
 *
 * The library's threads go on, so its code has to stay. */
#include <dlfcn.h>
#include <stdio.h>

typedef struct VUR_DL_DistLogger VUR_DL_DistLogger;
typedef struct VUR_DL_Options VUR_DL_Options;
typedef VUR_DL_Options *CreateOptions(void);
typedef int SetDomain(VUR_DL_Options *, int);
typedef int SetOptions(const VUR_DL_Options *);
typedef VUR_DL_DistLogger *GetInstance(void);
typedef void Log(VUR_DL_DistLogger *, const char *);
typedef int Query(void);

static int fail(const char *what) {
    fprintf(stderr, "%s\n", what);
    return 1;
}

/* Looks a function up; a function pointer cannot be converted from what dlsym returns. */
#define LOOK_UP(Type, variable, name)           \
    Type *variable = NULL;                      \
    *(void **)&variable = dlsym(library, name); \
    if (variable == NULL) {                     \
        return fail(name);                      \
    }

int main(int argc, char **argv) {
    void *library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (library == NULL) {
        return fail("cannot load the library");
    }
    LOOK_UP(CreateOptions, create_options, "VUR_DL_Options_createDefault")
    LOOK_UP(SetDomain, set_domain, "VUR_DL_Options_setDomainId")
    LOOK_UP(SetOptions, set_options, "VUR_DL_DistLogger_setOptions")
    LOOK_UP(GetInstance, get_instance, "VUR_DL_DistLogger_getInstance")
    LOOK_UP(Log, info, "VUR_DL_DistLogger_info")
    LOOK_UP(Query, is_running, "VUR_DL_DistLogger_isDistLoggerRunning")
    LOOK_UP(Query, finalize, "VUR_DL_DistLogger_finalizeInstance")
    VUR_DL_Options *options = create_options();
    if (options == NULL || set_domain(options, 58) != 0 || set_options(options) != 1) {
        return fail("no options");
    }
    VUR_DL_DistLogger *logger = get_instance();
    if (logger == NULL) {
        return fail("no logger");
    }
    info(logger, "before");
    if (dlclose(library) != 0) {
        return fail("cannot unload the library");
    }
    if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == NULL ||
        dlopen("libkolt.so.0", RTLD_NOW | RTLD_NOLOAD) == NULL) {
        return fail("a library is gone, and its threads run on");
    }
    info(logger, "after");
    if (is_running() != 1 || get_instance() != logger) {
        return fail("the logger is gone");
    }
    return finalize() == 0 ? 0 : fail("cannot finalise");
}
