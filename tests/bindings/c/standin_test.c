/* The control of the stand-in host, each part of it. */

#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

static void test_operations(void) {
    CHECK(strcmp(zktarn_standin_name(zktarn_op_qvMallocExOptim), "qvMallocExOptim") == 0);
    CHECK(strcmp(zktarn_standin_name(zktarn_op_qvxprintf800_), "qvxprintf800_") == 0);
    for (int i = 0; i < zktarn_standin_operation_count; ++i) {
        CHECK(strlen(zktarn_standin_name((zktarn_standin_operation)i)) > 0);
    }
    zktarn_standin_reset();
    CHECK(zktarn_standin_calls(zktarn_op_qvMallocExOptim) == 0);
    zktarn_mdeallocate(zktarn_mallocate(8));
    CHECK(zktarn_standin_calls(zktarn_op_qvMallocExOptim) == 1);
    zktarn_standin_fail_call(zktarn_op_qvMallocExOptim, 2);
    void* const block = zktarn_mallocate(8);
    CHECK(block != NULL && zktarn_mallocate(8) == NULL);
    zktarn_mdeallocate(block);
    zktarn_standin_reset();
    CHECK(zktarn_standin_calls(zktarn_op_qvMallocExOptim) == 0);
}

static void test_memory(void) {
    const int64_t requests = zktarn_standin_requests();
    zktarn_standin_fill_new_blocks(0xAB);
    unsigned char* const first = zktarn_mallocate(10);
    CHECK(first != NULL && first[0] == 0xAB && first[9] == 0xAB);
    zktarn_standin_fill_new_blocks(-1);
    void* const second = zktarn_mallocate(20);
    zktarn_standin_block blocks[3] = {{0}};
    CHECK(zktarn_standin_live_blocks(NULL, 0) == 2);
    CHECK(zktarn_standin_live_blocks(blocks, 1) == 2 && blocks[1].nbytes == 0);
    CHECK(zktarn_standin_live_blocks(blocks, 3) == 2);
    CHECK(blocks[0].address == first && blocks[1].address == second);
    CHECK(blocks[1].nbytes == 20 && blocks[1].order == requests + 2);
    CHECK(zktarn_standin_requests() == requests + 2);
    CHECK(zktarn_standin_check_blocks() == 0);
    zktarn_standin_fail_requests_from(1);
    CHECK(zktarn_mallocate(1) == NULL && zktarn_mallocate(1) == NULL);
    zktarn_standin_fail_requests_from(0);
    zktarn_mdeallocate(first);
    zktarn_mdeallocate(second);
    const bool huge = zktarn_standin_huge_pages(false);
    CHECK(!zktarn_standin_huge_pages(huge));
}

/* Like snprintf: truncates the text at the end of the buffer and returns its whole length. */
static void test_texts(void) {
    void* const block = zktarn_mallocate(24);
    char whole[2000];
    const size_t length = zktarn_standin_memory_report(whole, sizeof whole);
    CHECK(length == strlen(whole) && strstr(whole, "24") != NULL && whole[length - 1] == '\n');
    char piece[5] = "....";
    CHECK(zktarn_standin_memory_report(piece, sizeof piece) == length);
    CHECK(memcmp(piece, whole, 4) == 0 && piece[4] == '\0');
    CHECK(zktarn_standin_memory_report(piece, 1) == length && piece[0] == '\0');
    CHECK(zktarn_standin_memory_report(NULL, 0) == length);
    zktarn_array_handle structure = zktarn_qvinitcbarray("p", 1);
    const size_t with_objects = zktarn_standin_report(whole, sizeof whole);
    CHECK(with_objects > length && with_objects == strlen(whole));
    zktarn_standin_live_object objects[2];
    CHECK(zktarn_standin_live_objects(objects, 2) == 1);
    CHECK(objects[0].made_by == zktarn_op_qvcreatestructarray800_ &&
          objects[0].number == structure);
    zktarn_qvfreecbarray(&structure);
    zktarn_mdeallocate(block);
    CHECK(zktarn_standin_report_at_exit(false));
    CHECK(!zktarn_standin_report_at_exit(true));
}

struct seen {
    int count;
    zktarn_standin_fault_kind kind;
    int64_t nbytes;
};

static void note_fault(const zktarn_standin_fault* fault, void* context) {
    struct seen* const seen = context;
    seen->count += 1;
    seen->kind = fault->kind;
    seen->nbytes = fault->concerned.nbytes;
    CHECK(strlen(fault->sentence) == fault->sentence_length && fault->sentence_length > 10);
}

static void note_assertion(void* context) {
    *(int*)context += 1;
}

static void test_handlers(void) {
    struct seen seen = {0, zktarn_fault_bad_request, 0};
    zktarn_standin_set_fault_handler(note_fault, &seen);
    void* const block = zktarn_mallocate(33);
    zktarn_mdeallocate(block);
    zktarn_mdeallocate(block);
    CHECK(seen.count == 1 && seen.kind == zktarn_fault_double_free && seen.nbytes == 33);
    zktarn_standin_free_array(zktarn_standin_inspect(12345));
    CHECK(seen.count == 2 && seen.kind == zktarn_fault_unknown_object);
    zktarn_standin_set_fault_handler(NULL, NULL);
    int assertions = 0;
    zktarn_standin_set_assertion_handler(note_assertion, &assertions);
    zktarn_tarnassert(1);
    zktarn_tarnassert(0);
    zktarn_tarnassert(256);
    CHECK(assertions == 2);
    zktarn_standin_set_assertion_handler(NULL, NULL);
}

static void test_arrays(void) {
    const double values[3] = {1.0, 2.0, 3.0};
    zktarn_array_handle structure = zktarn_qvinitcbarray("abc", 3);
    zktarn_addrealvectoqvstruct(structure, "v", 1, values, 3);
    zktarn_standin_array* const array = zktarn_standin_inspect(structure);
    zktarn_qvfreecbarray(&structure);
    CHECK(zktarn_standin_array_kind_of(array) == zktarn_array_structure);
    CHECK(zktarn_standin_array_rows(array) == 1 && zktarn_standin_array_columns(array) == 1);
    CHECK(zktarn_standin_array_field_count(array) == 2);
    char name[10];
    CHECK(zktarn_standin_array_field_name(array, 1, name, sizeof name) == 5);
    CHECK(strcmp(name, "phase") == 0);
    CHECK(zktarn_standin_array_field_name(array, 0, name, sizeof name) == 0);
    CHECK(zktarn_standin_array_field_name(array, 3, name, sizeof name) == 0);
    CHECK(!zktarn_standin_array_has_field(array, "w", 1));
    const zktarn_standin_array* const column = zktarn_standin_array_field(array, "v", 1);
    CHECK(zktarn_standin_array_kind_of(column) == zktarn_array_real_matrix);
    size_t count = 0;
    CHECK(zktarn_standin_array_reals(column, &count)[2] == 3.0 && count == 3);
    zktarn_standin_free_array(array);
    zktarn_standin_free_array(NULL);
}

enum answer { TEXT, COLUMN, EMPTY, NOTHING };

static void reply_with(const zktarn_standin_array* input, zktarn_standin_reply* reply,
                       void* context) {
    static const double column[2] = {1.0, 5.0};
    CHECK(zktarn_standin_array_kind_of(input) == zktarn_array_structure);
    switch (*(const enum answer*)context) {
    case TEXT:
        zktarn_standin_reply_text(reply, "stop", 4);
        break;
    case COLUMN:
        zktarn_standin_reply_column(reply, column, 2);
        break;
    case EMPTY:
        zktarn_standin_reply_column(reply, NULL, 0);
        break;
    case NOTHING:
        break;
    }
}

static void test_functions(void) {
    struct seen faults = {0, zktarn_fault_bad_request, 0};
    zktarn_standin_set_fault_handler(note_fault, &faults);
    zktarn_array_handle structure = zktarn_qvinitcbarray("p", 1);
    for (enum answer answer = TEXT; answer <= NOTHING; ++answer) {
        zktarn_standin_set_function("tarnCallback", 12, reply_with, &answer);
        zktarn_flag stop = -1;
        faults.count = 0;
        zktarn_qvcalloutputfcn(structure, &stop, 0, 0);
        CHECK(stop == (answer == COLUMN ? 1 : 0));
        CHECK((faults.count > 0) == (answer == TEXT || answer == EMPTY));
    }
    CHECK(zktarn_standin_set_function("tarnCallback", 12, NULL, NULL));
    CHECK(!zktarn_standin_set_function("tarnCallback", 12, NULL, NULL));
    zktarn_qvfreecbarray(&structure);
    zktarn_standin_set_fault_handler(NULL, NULL);
}

static void test_console_and_interrupts(void) {
    CHECK(zktarn_standin_set_console(zktarn_console_capture) == zktarn_console_show);
    zktarn_cbprintdisplay(0, 0, 1, "line", 4);
    char text[10];
    CHECK(zktarn_standin_console_text(text, sizeof text) == 5 && strcmp(text, "line\n") == 0);
    zktarn_standin_clear_console();
    CHECK(zktarn_standin_console_text(text, sizeof text) == 0 && text[0] == '\0');
    CHECK(zktarn_standin_set_console(zktarn_console_show) == zktarn_console_capture);
    zktarn_cbdata* cb = NULL;
    zktarn_cbinit(&cb);
    zktarn_standin_interrupt_at_poll(2);
    CHECK(zktarn_cbhasinterrupt(0, 1) == 0 && zktarn_cbhasinterrupt(0, 1) == 1);
    zktarn_cbfree(&cb);
    const bool listens = zktarn_standin_listen_for_sigint(false);
    CHECK(!zktarn_standin_listen_for_sigint(listens));
}

static bool answer(const zktarn_standin_call* call, zktarn_standin_answer* given, void* context) {
    size_t count = 0;
    *(int64_t*)context = zktarn_standin_call_integers(call, &count)[0];
    CHECK(count == 1 && zktarn_standin_call_operation(call) == zktarn_op_qvMallocExOptim);
    if (*(int64_t*)context == 99) {
        return false;
    }
    static double storage[4];
    zktarn_standin_answer_address(given, storage);
    return true;
}

static void test_call_log(void) {
    CHECK(!zktarn_standin_log_calls(true));
    zktarn_array_handle structure = zktarn_qvinitcbarray("cutting", 7);
    CHECK(zktarn_standin_log_calls(false));
    CHECK(zktarn_standin_logged_call_count() == 3);
    CHECK(zktarn_standin_logged_call(0) == NULL && zktarn_standin_logged_call(4) == NULL);
    zktarn_standin_call* const call = zktarn_standin_logged_call(2);
    CHECK(call != NULL);
    CHECK(zktarn_standin_call_operation(call) == zktarn_op_qvcreatestring800_);
    CHECK(zktarn_standin_call_text_count(call) == 1);
    size_t length = 0;
    const char* const text = zktarn_standin_call_characters(call, 1, &length);
    CHECK(length == 7 && memcmp(text, "cutting", 7) == 0);
    CHECK(zktarn_standin_call_characters(call, 2, &length) == NULL && length == 0);
    CHECK(zktarn_standin_call_result(call) != 0);
    CHECK(zktarn_standin_call_result_address(call) == NULL);
    zktarn_standin_call_reals(call, &length);
    CHECK(length == 0);
    zktarn_standin_call_addresses(call, &length);
    CHECK(length == 0);
    char words[80];
    CHECK(zktarn_standin_call_in_words(call, words, sizeof words) == strlen(words));
    CHECK(strncmp(words, "qvcreatestring800_(\"cutting\") = ", 32) == 0);
    zktarn_standin_free_call(call);
    zktarn_standin_free_call(NULL);
    zktarn_standin_clear_call_log();
    CHECK(zktarn_standin_logged_call_count() == 0);
    zktarn_qvfreecbarray(&structure);
}

static void test_scripts(void) {
    int64_t asked = 0;
    CHECK(!zktarn_standin_answer_calls(zktarn_op_qvMallocExOptim, answer, &asked));
    CHECK(zktarn_mallocate(24) != NULL && asked == 24);
    void* const block = zktarn_mallocate(99);
    CHECK(asked == 99 && zktarn_standin_live_blocks(NULL, 0) == 1);
    CHECK(zktarn_standin_answer_calls(zktarn_op_qvMallocExOptim, NULL, NULL));
    zktarn_mdeallocate(block);
}

/* A fault gives the call stacks of the fault and of the block's allocation. */
static void note_places(const zktarn_standin_fault* fault, void* context) {
    int* const seen = context;
    *seen += 1;
    CHECK(strlen(fault->origin) == fault->origin_length);
    CHECK(strlen(fault->place) == fault->place_length);
#ifdef __linux__
    CHECK(strstr(fault->place, "zktarn_mdeallocate") != NULL);
    CHECK(strstr(fault->origin, "zktarn_mallocate") != NULL);
#endif
}

static void test_origins(void) {
    int seen = 0;
    const bool recorded = zktarn_standin_record_origins(true);
    zktarn_standin_set_fault_handler(note_places, &seen);
    void* const block = zktarn_mallocate(40);
    zktarn_mdeallocate(block);
    zktarn_mdeallocate(block);
    CHECK(seen == 1);
    zktarn_standin_set_fault_handler(NULL, NULL);
    CHECK(zktarn_standin_record_origins(recorded));
}

/* Whether a list of calls is written and names a procedure; some systems show no calls. */
static bool lists_call(size_t length, const char* text, const char* name) {
#ifdef __linux__
    return length == strlen(text) && length > 0 && strstr(text, name) != NULL;
#else
    (void)name;
    return length == strlen(text);
#endif
}

static void test_who_made_them(void) {
    const bool recorded = zktarn_standin_record_origins(true);
    void* const memory = zktarn_mallocate(16);
    zktarn_array_handle structure = zktarn_qvinitcbarray("p", 1);
    char text[4000];
    zktarn_standin_block block;
    CHECK(zktarn_standin_live_blocks(&block, 1) == 1 && block.address == memory);
    CHECK(lists_call(zktarn_standin_block_origin(&block, text, sizeof text), text,
                     "zktarn_mallocate"));
    zktarn_standin_live_object object;
    CHECK(zktarn_standin_live_objects(&object, 1) == 1);
    CHECK(lists_call(zktarn_standin_object_origin(&object, text, sizeof text), text,
                     "qvinitcbarray"));
    char described[200];
    CHECK(zktarn_standin_object_description(&object, described, sizeof described) ==
          strlen(described));
    CHECK(strstr(described, "struct") != NULL);
    object.made_by = zktarn_op_qvcreatestring800_;
    CHECK(zktarn_standin_object_description(&object, described, sizeof described) == 0);
    CHECK(zktarn_standin_object_origin(&object, text, sizeof text) == 0);
    zktarn_qvfreecbarray(&structure);
    zktarn_mdeallocate(memory);
    CHECK(zktarn_standin_block_origin(&block, text, sizeof text) == 0 && text[0] == '\0');
    CHECK(zktarn_standin_record_origins(recorded));
    CHECK(lists_call(zktarn_standin_call_stack(text, sizeof text), text,
                     "zktarn_standin_call_stack"));
}

static void test_records(void) {
    const int64_t requests = zktarn_standin_record_requests();
    const int64_t live = zktarn_standin_live_records();
    zktarn_vector* v = NULL;
    zktarn_cbdata* cb = NULL;
    CHECK(zktarn_vector_alloc(&v, 3, NULL, NULL, NULL) == 1);
    zktarn_cbinit(&cb);
    CHECK(zktarn_standin_record_requests() == requests + 2);
    CHECK(zktarn_standin_live_records() == live + 2);
    zktarn_vector_free(&v);
    zktarn_cbfree(&cb);
    CHECK(zktarn_standin_live_records() == live);
    zktarn_standin_fail_record(2);
    zktarn_cbinit(&cb);
    CHECK(zktarn_vector_alloc(&v, 3, NULL, NULL, NULL) == 0 && v == NULL);
    CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);
    zktarn_cbfree(&cb);
    zktarn_standin_fail_record(1);
    zktarn_standin_fail_record(0);
    zktarn_cbinit(&cb);
    CHECK(cb != NULL);
    zktarn_cbfree(&cb);
    CHECK(zktarn_standin_record_requests() == requests + 5);
    CHECK(zktarn_standin_live_records() == live);
}

int main(void) {
    test_operations();
    test_call_log();
    test_scripts();
    test_origins();
    test_who_made_them();
    test_records();
    test_memory();
    test_texts();
    test_handlers();
    test_arrays();
    test_functions();
    test_console_and_interrupts();
    CHECK(strcmp(zktarn_standin_version(), ZKTARN_VERSION_STRING) == 0);
    CHECK(strcmp(zktarn_version(), ZKTARN_VERSION_STRING) == 0);
    return failures();
}
