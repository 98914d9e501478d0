/* The bridge to the host: texts of every length, structs, the output function, failures. */

#include <float.h>
#include <stdlib.h>
#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

enum { LONGEST = 300 };

static const char blanks[] = "   ";

/* A text of `length` characters that ends in up to three blanks. */
static void fill(char* text, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        text[i] = i + 3 >= length ? ' ' : (char)('A' + i % 26);
    }
}

static int is_text(const zktarn_standin_array* array, const char* text, size_t length) {
    size_t held = 0;
    const char* const characters = zktarn_standin_array_characters(array, &held);
    return held == length && (length == 0 || memcmp(characters, text, length) == 0);
}

static void test_phase_of_every_length(void) {
    char text[LONGEST];
    for (size_t length = 0; length <= LONGEST; ++length) {
        fill(text, length);
        zktarn_array_handle structure = zktarn_qvinitcbarray(length == 0 ? NULL : text, length);
        zktarn_standin_array* const seen = zktarn_standin_inspect(structure);
        CHECK(is_text(zktarn_standin_array_field(seen, "phase", 5), text, length));
        zktarn_standin_free_array(seen);
        zktarn_qvfreecbarray(&structure);
        CHECK(structure == 0);
    }
}

static void test_field_name_of_every_length(void) {
    char name[40];
    for (size_t length = 1; length <= sizeof name; ++length) {
        memset(name, 'x', length);
        zktarn_array_handle structure = zktarn_qvinitcbarray("p", 1);
        const double values[2] = {1.5, 2.5};
        zktarn_addrealscalartoqvstruct(structure, name, length, 4.0);
        zktarn_addrealvectoqvstruct(structure, name, length, values, 2);
        zktarn_addrealvectoqvstruct(structure, "empty", 5, NULL, 0);
        zktarn_addrealscalartoqvstruct(structure, "s", 1, 4.0);
        zktarn_standin_array* const seen = zktarn_standin_inspect(structure);
        CHECK(zktarn_standin_array_has_field(seen, name, length));
        size_t count = 0;
        const double* const reals =
            zktarn_standin_array_reals(zktarn_standin_array_field(seen, name, length), &count);
        CHECK(count == 2 && reals[0] == 1.5 && reals[1] == 2.5);
        CHECK(zktarn_standin_array_scalar(zktarn_standin_array_field(seen, "s", 1)) == 4.0);
        CHECK(zktarn_standin_array_rows(zktarn_standin_array_field(seen, "empty", 5)) == 0);
        zktarn_standin_free_array(seen);
        zktarn_qvfreecbarray(&structure);
    }
}

static void test_line_of_every_length(void) {
    static char text[LONGEST];
    static char seen[LONGEST + 2];
    zktarn_standin_set_console(zktarn_console_capture);
    for (size_t length = 0; length <= LONGEST; ++length) {
        fill(text, length);
        zktarn_standin_clear_console();
        zktarn_cbprintdisplay(0, 0, 2, length == 0 ? NULL : text, length);
        CHECK(zktarn_standin_flushed_console_text(seen, sizeof seen) == length + 1);
        CHECK((length == 0 || memcmp(seen, text, length) == 0) && seen[length] == '\n');
    }
    zktarn_standin_clear_console();
    zktarn_cbprintdisplay(0, 0, ZKTARN_DISPLAY_OFF, "off", 3);
    zktarn_cbprintdisplay(ZKTARN_STOPPED_BY_OUTPUT_FUNCTION, 0, 2, "stopped", 7);
    CHECK(zktarn_standin_console_text(NULL, 0) == 0);
    zktarn_standin_set_console(zktarn_console_show);
}

static void test_lowercasee(void) {
    for (size_t length = 0; length <= LONGEST; ++length) {
        static char text[LONGEST];
        memset(text, 'E', sizeof text);
        zktarn_lowercasee(length == 0 ? NULL : text, length);
        for (size_t i = 0; i < LONGEST; ++i) {
            CHECK(text[i] == (i < length ? 'e' : 'E'));
        }
    }
    char trailing[] = "1.5E+03   ";
    zktarn_lowercasee(trailing, strlen(trailing));
    CHECK(strcmp(trailing, "1.5e+03   ") == 0);
}

struct output_function {
    double answer;
    int calls;
    char phase[16];
};

static void called(const zktarn_standin_array* input, zktarn_standin_reply* reply, void* context) {
    struct output_function* const function = context;
    function->calls += 1;
    zktarn_standin_reply_scalar(reply, function->answer);
    const zktarn_standin_array* const field = zktarn_standin_array_field(input, "phase", 5);
    if (zktarn_standin_array_kind_of(field) != zktarn_array_text) {
        return; /* the host could not make the text */
    }
    size_t length = 0;
    const char* const phase = zktarn_standin_array_characters(field, &length);
    CHECK(length < sizeof function->phase);
    memcpy(function->phase, phase, length);
    function->phase[length] = '\0';
}

static zktarn_flag answer_to(struct output_function* function, zktarn_array_handle structure,
                             int32_t status, int32_t ctrlc) {
    CHECK(!zktarn_standin_set_function("tarnCallback", 12, called, function));
    zktarn_flag stop = -1;
    zktarn_qvcalloutputfcn(structure, &stop, status, ctrlc);
    CHECK(zktarn_standin_set_function("tarnCallback", 12, NULL, NULL));
    return stop;
}

static void test_output_function(void) {
    zktarn_array_handle structure = zktarn_qvinitcbarray("iter", 4);
    struct output_function stops = {1.9, 0, ""};
    CHECK(answer_to(&stops, structure, 0, 0) == 1);
    CHECK(stops.calls == 1 && strcmp(stops.phase, "iter") == 0);
    struct output_function goes_on = {2.0, 0, ""};
    CHECK(answer_to(&goes_on, structure, 0, 0) == 0 && goes_on.calls == 1);
    CHECK(answer_to(&stops, structure, ZKTARN_STOPPED_BY_OUTPUT_FUNCTION, 0) == 0);
    CHECK(stops.calls == 1);
    zktarn_qvfreecbarray(&structure);
}

static void test_interrupt(void) {
    zktarn_cbdata* cb = NULL;
    zktarn_cbinit(&cb);
    CHECK(cb != NULL && cb->nodes_explored == 0 && cb->upper_bound == DBL_MAX);
    CHECK(zktarn_cbhasinterrupt(0, 0) == 0);
    CHECK(zktarn_cbhasinterrupt(ZKTARN_STOPPED_BY_OUTPUT_FUNCTION, 0) == 1);
    zktarn_standin_raise_interrupt();
    CHECK(zktarn_cbhasinterrupt(0, 0) == 0);
    CHECK(zktarn_cbhasinterrupt(0, ZKTARN_POLL_FOR_INTERRUPTS) == 1);
    CHECK(zktarn_cbhasinterrupt(0, 0) == 1);
    zktarn_cbfree(&cb);
    CHECK(cb == NULL);
    zktarn_cbinit(&cb);
    CHECK(zktarn_cbhasinterrupt(0, 0) == 0);
    zktarn_cbfree(&cb);
    zktarn_cbfree(&cb);
}

static void test_codes(void) {
    CHECK(zktarn_cbstopfromoutputfcn(3) == 1 && zktarn_cbstopfromoutputfcn(1) == 0);
    CHECK(zktarn_cbhasoutputfcn(1) == 1 && zktarn_cbhasoutputfcn(0) == 0);
    CHECK(zktarn_cbisdisplayoff(0) == 1 && zktarn_cbisdisplayoff(1) == 0);
    CHECK(zktarn_cbisdisplayfinal(1) == 1 && zktarn_cbisdisplayfinal(2) == 0);
    CHECK(zktarn_cbisctrlcon(1) == 1 && zktarn_cbisctrlcon(2) == 0);
}

/* No failing call of the host leaks: the struct owns its values, or is 0. */
static void test_host_failures(void) {
    static const zktarn_standin_operation operations[] = {
        zktarn_op_qvcreatestructarray800_,  zktarn_op_qvcreatestring800_,
        zktarn_op_qvcreatedoublescalar800_, zktarn_op_qvcreatedoublematrix800_,
        zktarn_op_qvaddfield800_,           zktarn_op_qvgetpr800_,
        zktarn_op_qvxcallquarn800_,         zktarn_op_qvxprintf800_};
    zktarn_standin_set_console(zktarn_console_capture);
    for (size_t i = 0; i < sizeof operations / sizeof operations[0]; ++i) {
        for (int64_t k = 1; k <= 2; ++k) {
            struct output_function function = {1.0, 0, ""};
            const double values[1] = {2.0};
            zktarn_standin_fail_call(operations[i], k);
            zktarn_array_handle structure = zktarn_qvinitcbarray("p", 1);
            zktarn_addrealscalartoqvstruct(structure, "s", 1, 1.0);
            zktarn_addrealvectoqvstruct(structure, "v", 1, values, 1);
            if (structure != 0) {
                const zktarn_flag stop = answer_to(&function, structure, 0, 0);
                CHECK(stop == 0 || stop == 1);
            }
            zktarn_cbprintdisplay(0, 0, 2, blanks, 3);
            zktarn_qvfreecbarray(&structure);
            CHECK(zktarn_standin_live_objects(NULL, 0) == 0);
            zktarn_standin_reset();
            zktarn_standin_set_console(zktarn_console_capture);
        }
    }
    zktarn_standin_set_console(zktarn_console_show);
}

static void test_refused_record(void) {
    zktarn_cbdata* cb = NULL;
    zktarn_standin_fail_record(1);
    zktarn_cbinit(&cb);
    CHECK(cb == NULL);
    zktarn_vector* v = NULL;
    zktarn_standin_fail_record(1);
    CHECK(zktarn_vector_alloc(&v, 3, NULL, NULL, NULL) == 0 && v == NULL);
}

static void test_initialise(void) {
    zktarn_cbstatusdata status[2];
    memset(status, 0x55, sizeof status);
    zktarn_cbstatusdatainitialise(status, 1);
    CHECK(status[0].status == 0 && status[0].seconds == 0.0 && status[1].status == 0x55555555);
    zktarn_cbdata data[2];
    memset(data, 0x55, sizeof data);
    zktarn_cbdatainitialise(data, 1);
    CHECK(data[0].nodes_explored == -1 && data[0].gap == DBL_MAX && data[0].restarts == 0);
    CHECK(data[1].node == 0x55555555);
}

int main(void) {
    test_phase_of_every_length();
    test_field_name_of_every_length();
    test_line_of_every_length();
    test_lowercasee();
    test_output_function();
    test_interrupt();
    test_codes();
    test_host_failures();
    test_refused_record();
    test_initialise();
    CHECK(zktarn_standin_live_objects(NULL, 0) == 0);
    CHECK(zktarn_standin_live_records() == 0);
    return failures();
}
