/* SPDX-License-Identifier: Apache-2.0 */
/* A user of the installed package: C11, the umbrella header, one call into each library. */

#include <stdio.h>
#include <vur_dl/vur_dl.h>

int main(void) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    if (options == NULL) {
        fprintf(stderr, "no options\n");
        return 1;
    }
    VUR_DL_Options_delete(options);

    if (DDS_DomainParticipantFactory_get_instance() == NULL) {
        fprintf(stderr, "no participant factory\n");
        return 1;
    }
    puts("package works");
    return 0;
}
