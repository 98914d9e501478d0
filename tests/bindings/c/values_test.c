/* Values of n bytes in the slot of a cbdatalist: stored, copied, destroyed, refused. */

#include <stdalign.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

struct counts {
    int copied;
    int destroyed;
    int refuse;
};

/* A value that owns a text. */
struct note {
    char* text;
    int number;
};

static char* text_of(const char* characters) {
    char* const text = malloc(strlen(characters) + 1);
    CHECK(text != NULL);
    strcpy(text, characters);
    return text;
}

static zktarn_flag copy_note(void* value, void* context) {
    struct counts* const counts = context;
    struct note* const note = value;
    if (counts->refuse) {
        return 0;
    }
    note->text = text_of(note->text);
    counts->copied += 1;
    return 1;
}

static void destroy_note(void* value, void* context) {
    struct counts* const counts = context;
    struct note* const note = value;
    free(note->text);
    counts->destroyed += 1;
}

static void test_owning_value(void) {
    struct counts counts = {0, 0, 0};
    const struct note note = {text_of("cuts"), 7};
    zktarn_cbdatalist list = {0};
    CHECK(zktarn_store_value(&list, &note, sizeof note, copy_note, destroy_note, &counts) == 1);
    list.first_handle = 11;
    size_t n = 0;
    struct note* const stored = zktarn_stored_value(&list, &n);
    CHECK(stored != NULL && n == sizeof note && stored->number == 7 && stored->text == note.text);
    CHECK((uintptr_t)stored % alignof(max_align_t) == 0);

    zktarn_cbdatalist copy = list;
    zktarn_cbdatalistcopy(&copy, 1);
    struct note* const copied = zktarn_stored_value(&copy, NULL);
    CHECK(copied != NULL && copied != stored && copied->text != stored->text);
    CHECK(copied != NULL && strcmp(copied->text, "cuts") == 0 && copy.first_handle == 11);
    CHECK(counts.copied == 1);

    zktarn_cbdatalistfinalise(&list, 1);
    CHECK(counts.destroyed == 1 && zktarn_stored_value(&list, &n) == NULL && n == 0);
    zktarn_cbdatalistfinalise(&list, 1);
    CHECK(counts.destroyed == 1);
    zktarn_cbdatalistfinalise(&copy, 1);
    CHECK(counts.destroyed == 2 && zktarn_standin_live_records() == 0);
}

/* A copy that its procedure refuses is empty, and is not destroyed. */
static void test_refused_copy(void) {
    struct counts counts = {0, 0, 1};
    const struct note note = {text_of("bound"), 1};
    zktarn_cbdatalist list = {0};
    CHECK(zktarn_store_value(&list, &note, sizeof note, copy_note, destroy_note, &counts) == 1);
    zktarn_cbdatalist copy = list;
    zktarn_cbdatalistcopy(&copy, 1);
    CHECK(zktarn_stored_value(&copy, NULL) == NULL && zktarn_stored_value(&list, NULL) != NULL);
    zktarn_cbdatalist copy_of_copy = copy;
    counts.refuse = 0;
    zktarn_cbdatalistcopy(&copy_of_copy, 1);
    CHECK(zktarn_stored_value(&copy_of_copy, NULL) == NULL && counts.copied == 0);
    zktarn_cbdatalistfinalise(&copy_of_copy, 1);
    zktarn_cbdatalistfinalise(&copy, 1);
    CHECK(counts.destroyed == 0);
    zktarn_cbdatalistfinalise(&list, 1);
    CHECK(counts.destroyed == 1 && zktarn_standin_live_records() == 0);
}

static void test_plain_values(void) {
    unsigned char bytes[300];
    for (size_t i = 0; i < sizeof bytes; ++i) {
        bytes[i] = (unsigned char)i;
    }
    zktarn_cbdatalist list = {0};
    for (size_t size = 0; size <= sizeof bytes; ++size) {
        CHECK(zktarn_store_value(&list, size == 0 ? NULL : bytes, size, NULL, NULL, NULL) == 1);
        size_t n = 1;
        const void* const stored = zktarn_stored_value(&list, &n);
        CHECK(stored != NULL && n == size && memcmp(stored, bytes, size) == 0);
    }
    zktarn_cbdatalist copies[2] = {list, list};
    zktarn_cbdatalistcopy(copies, 2);
    CHECK(memcmp(zktarn_stored_value(&copies[1], NULL), bytes, sizeof bytes) == 0);
    zktarn_cbdatalistfinalise(copies, 2);
    zktarn_cbdatalistfinalise(&list, 1);
    CHECK(zktarn_standin_live_records() == 0);
}

/* The first or the second allocation refused: the slot stays as it was. */
static void test_no_memory(void) {
    struct counts counts = {0, 0, 0};
    zktarn_cbdatalist list = {0};
    const int kept = 5;
    CHECK(zktarn_store_value(&list, &kept, sizeof kept, NULL, NULL, NULL) == 1);
    for (int64_t k = 1; k <= 2; ++k) {
        const struct note note = {text_of("x"), 1};
        zktarn_standin_fail_record(k);
        CHECK(zktarn_store_value(&list, &note, sizeof note, copy_note, destroy_note, &counts) == 0);
        const int* const stored = zktarn_stored_value(&list, NULL);
        CHECK(stored != NULL && *stored == 5 && counts.destroyed == 0);
        free(note.text);
        zktarn_cbdatalist copy = list;
        zktarn_standin_fail_record(k);
        zktarn_cbdatalistcopy(&copy, 1);
        CHECK(zktarn_stored_value(&copy, NULL) == NULL);
        zktarn_cbdatalistfinalise(&copy, 1);
    }
    zktarn_standin_fail_record(0);
    CHECK(zktarn_store_value(&list, &kept, SIZE_MAX, NULL, NULL, NULL) == 0);
    zktarn_cbdatalistfinalise(&list, 1);
    CHECK(zktarn_standin_live_records() == 0);
}

/* A value type of the caller's own, as in C++. */
static void copy_number(void* first, const int32_t* count) {
    for (int32_t i = 0; i < *count; ++i) {
        ((int*)first)[i] += 100;
    }
}

static void test_own_type(void) {
    static const zktarn_value_type type = {sizeof(int), 0, copy_number, NULL, NULL};
    int number = 1;
    zktarn_cbdatalist list = {0};
    list.slot.value = &number;
    list.slot.type = &type;
    CHECK(zktarn_stored_value(&list, NULL) == NULL);
    zktarn_cbdatalistcopy(&list, 1);
    CHECK(*(int*)list.slot.value == 101 && number == 1);
    zktarn_cbdatalistfinalise(&list, 1);
    zktarn_cbdatalist records[2];
    memset(records, 0x55, sizeof records);
    zktarn_cbdatalistinitialise(records, 1);
    CHECK(records[0].slot.value == NULL && records[0].second_handle == 0);
    CHECK(records[1].first_handle == 0x5555555555555555);
    CHECK(zktarn_standin_live_records() == 0);
}

int main(void) {
    test_owning_value();
    test_refused_copy();
    test_plain_values();
    test_no_memory();
    test_own_type();
    return failures();
}
