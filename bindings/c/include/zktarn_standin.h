#ifndef ZKTARN_STANDIN_H
#define ZKTARN_STANDIN_H

/*
 * Control of the stand-in host in C. The C++ headers of zktarn_standin hold the contract of each
 * procedure; here a comment gives what differs.
 *
 *  - Everything is process-wide and callable from any thread.
 *  - An input text is an address and a length.
 *  - An output text is written to a buffer of `capacity` bytes, as by snprintf: as much as fits,
 *    followed by a zero byte unless capacity is 0. The result is the length of the whole text
 *    without that byte; a call with NULL and 0 returns the length alone.
 *  - An output list is written to an array of `capacity` elements: as many as fit. The result is
 *    the length of the whole list.
 *  - If memory for an output is missing, the text or list is empty.
 */

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef ZKTARN_C_BUILDING
#define ZKTARN_STANDIN_C_API __attribute__((visibility("default")))
#else
#define ZKTARN_STANDIN_C_API
#endif

#ifdef __cplusplus
#define ZKTARN_STANDIN_NOEXCEPT noexcept
extern "C" {
#else
#define ZKTARN_STANDIN_NOEXCEPT
#endif

/* Operations ----------------------------------------------------------------------------------- */

/* Every operation of the host, in the order of its libraries. */
typedef enum zktarn_standin_operation {
    zktarn_op_qvMallocExOptim,
    zktarn_op_qvFreeExOptim,
    zktarn_op_instantiateRngOptim,
    zktarn_op_deleteRngOptim,
    zktarn_op_getRandUniformOptim,
    zktarn_op_getRngStateOptim,
    zktarn_op_setRngStateOptim,
    zktarn_op_deleteRngStateOptim,
    zktarn_op_assertOptim,
    zktarn_op_ioFlushOptim,
    zktarn_op_utIsInterruptPending,
    zktarn_op_qvcreatestructarray800_,
    zktarn_op_qvcreatestring800_,
    zktarn_op_qvcreatedoublescalar800_,
    zktarn_op_qvcreatedoublematrix800_,
    zktarn_op_qvsetfield800_,
    zktarn_op_qvsetfieldbynumber800_,
    zktarn_op_qvgetfieldnumber800_,
    zktarn_op_qvaddfield800_,
    zktarn_op_qvgetpr800_,
    zktarn_op_qvcopyptrtoreal8800_,
    zktarn_op_qvcopyreal8toptr800_,
    zktarn_op_qvdestroyarray800_,
    zktarn_op_qvxcallquarn800_,
    zktarn_op_qvxprintf800_
} zktarn_standin_operation;

enum { zktarn_standin_operation_count = zktarn_op_qvxprintf800_ + 1 };

/* The version of the stand-in host, ended by a zero byte; never released. */
const char* zktarn_standin_version(void) ZKTARN_STANDIN_NOEXCEPT;
/* The name of an operation, ended by a zero byte; never released. */
ZKTARN_STANDIN_C_API const char* zktarn_standin_name(zktarn_standin_operation operation);
ZKTARN_STANDIN_C_API int64_t zktarn_standin_calls(zktarn_standin_operation operation);
ZKTARN_STANDIN_C_API void zktarn_standin_fail_call(zktarn_standin_operation operation, int64_t k);
ZKTARN_STANDIN_C_API void zktarn_standin_reset(void);

/* Memory manager ------------------------------------------------------------------------------- */

typedef struct zktarn_standin_block {
    const void* address;
    int64_t nbytes;
    int64_t order;
} zktarn_standin_block;

ZKTARN_STANDIN_C_API int64_t zktarn_standin_requests(void);
ZKTARN_STANDIN_C_API void zktarn_standin_fail_request(int64_t k);
ZKTARN_STANDIN_C_API void zktarn_standin_fail_requests_from(int64_t k);
ZKTARN_STANDIN_C_API void zktarn_standin_fill_new_blocks(int32_t byte);
ZKTARN_STANDIN_C_API bool zktarn_standin_huge_pages(bool on);
ZKTARN_STANDIN_C_API size_t zktarn_standin_live_blocks(zktarn_standin_block* blocks,
                                                       size_t capacity);
/*
 * The calls that allocated a live block, one line for each, innermost first; empty unless origins
 * are recorded, or if no live block has that address.
 */
ZKTARN_STANDIN_C_API size_t zktarn_standin_block_origin(const zktarn_standin_block* block,
                                                        char* buffer, size_t capacity);
ZKTARN_STANDIN_C_API int64_t zktarn_standin_check_blocks(void);
ZKTARN_STANDIN_C_API size_t zktarn_standin_memory_report(char* buffer, size_t capacity);

/* Leaks ---------------------------------------------------------------------------------------- */

typedef struct zktarn_standin_live_object {
    zktarn_standin_operation made_by;
    int64_t number;
} zktarn_standin_live_object;

ZKTARN_STANDIN_C_API size_t zktarn_standin_live_objects(zktarn_standin_live_object* objects,
                                                        size_t capacity);
/* A live object in words; empty if the object has been released. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_object_description(
    const zktarn_standin_live_object* object, char* buffer, size_t capacity);
/* The calls that made a live object, as for a block; empty if the object has been released. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_object_origin(const zktarn_standin_live_object* object,
                                                         char* buffer, size_t capacity);
/* The memory report, and a line for each object that has not been released. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_report(char* buffer, size_t capacity);
ZKTARN_STANDIN_C_API bool zktarn_standin_report_at_exit(bool on);

/* Faults --------------------------------------------------------------------------------------- */

typedef enum zktarn_standin_fault_kind {
    zktarn_fault_bad_request,
    zktarn_fault_double_free,
    zktarn_fault_foreign_free,
    zktarn_fault_write_past_end,
    zktarn_fault_write_before_start,
    zktarn_fault_unknown_object,
    zktarn_fault_use_after_release,
    zktarn_fault_wrong_kind,
    zktarn_fault_out_of_range,
    zktarn_fault_bad_ownership,
    zktarn_fault_unknown_function,
    zktarn_fault_function_threw
} zktarn_standin_fault_kind;

/*
 * A fault, valid during the call of the handler. Its texts end with a zero byte: the sentence; the
 * calls that made the object concerned, empty unless origins are recorded; the calls that led to
 * the fault. A list of calls has one line for each, innermost first.
 */
typedef struct zktarn_standin_fault {
    zktarn_standin_fault_kind kind;
    zktarn_standin_block concerned;
    const char* sentence;
    size_t sentence_length;
    const char* origin;
    size_t origin_length;
    const char* place;
    size_t place_length;
} zktarn_standin_fault;

typedef void (*zktarn_standin_fault_handler)(const zktarn_standin_fault* fault, void* context);

/* A NULL handler restores the default, which writes the sentence to standard error and aborts. */
ZKTARN_STANDIN_C_API void zktarn_standin_set_fault_handler(zktarn_standin_fault_handler handler,
                                                           void* context);

ZKTARN_STANDIN_C_API bool zktarn_standin_record_origins(bool on);
/* The calls in progress on this thread, one line for each, innermost first. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_call_stack(char* buffer, size_t capacity);

/* Assertions ----------------------------------------------------------------------------------- */

typedef void (*zktarn_standin_assertion_handler)(void* context);

/* A NULL handler restores the default, which writes a sentence to standard error and aborts. */
ZKTARN_STANDIN_C_API void
zktarn_standin_set_assertion_handler(zktarn_standin_assertion_handler handler, void* context);

/* Arrays --------------------------------------------------------------------------------------- */

typedef enum zktarn_standin_array_kind {
    zktarn_array_structure,
    zktarn_array_real_matrix,
    zktarn_array_real_scalar,
    zktarn_array_text
} zktarn_standin_array_kind;

/* A copy of a host array, made when the array was inspected. */
typedef struct zktarn_standin_array zktarn_standin_array;

/*
 * A copy of a live array, to be released by zktarn_standin_free_array; NULL if memory is missing.
 * An unknown handle is a fault; the copy is then an empty real array.
 */
ZKTARN_STANDIN_C_API zktarn_standin_array* zktarn_standin_inspect(int64_t handle);
/* The array may be NULL. */
ZKTARN_STANDIN_C_API void zktarn_standin_free_array(zktarn_standin_array* array);

/*
 * Reading a value of another kind, or a field that does not exist, is a fault; the result is then
 * 0.0, no numbers, no text or no fields. Addresses returned are valid as long as `array`.
 */
ZKTARN_STANDIN_C_API zktarn_standin_array_kind
zktarn_standin_array_kind_of(const zktarn_standin_array* array);
ZKTARN_STANDIN_C_API int64_t zktarn_standin_array_rows(const zktarn_standin_array* array);
ZKTARN_STANDIN_C_API int64_t zktarn_standin_array_columns(const zktarn_standin_array* array);
ZKTARN_STANDIN_C_API double zktarn_standin_array_scalar(const zktarn_standin_array* array);
/* The numbers, column by column; writes their count to *count. */
ZKTARN_STANDIN_C_API const double* zktarn_standin_array_reals(const zktarn_standin_array* array,
                                                              size_t* count);
/* The characters, not ended by a zero byte; writes their count to *length. */
ZKTARN_STANDIN_C_API const char* zktarn_standin_array_characters(const zktarn_standin_array* array,
                                                                 size_t* length);
ZKTARN_STANDIN_C_API size_t zktarn_standin_array_field_count(const zktarn_standin_array* array);
/* The name of field `number`, counted from 1; an empty text for a number that no field has. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_array_field_name(const zktarn_standin_array* array,
                                                            size_t number, char* buffer,
                                                            size_t capacity);
ZKTARN_STANDIN_C_API bool zktarn_standin_array_has_field(const zktarn_standin_array* array,
                                                         const char* name, size_t name_length);
ZKTARN_STANDIN_C_API const zktarn_standin_array*
zktarn_standin_array_field(const zktarn_standin_array* array, const char* name, size_t name_length);

/* Functions of the host's language ------------------------------------------------------------- */

/* What a function returns, set by one of the three below; the real scalar 0.0 when none is called.
 */
typedef struct zktarn_standin_reply zktarn_standin_reply;

ZKTARN_STANDIN_C_API void zktarn_standin_reply_scalar(zktarn_standin_reply* reply, double value);
/* `values` may be NULL when n < 1, which makes an empty column. */
ZKTARN_STANDIN_C_API void zktarn_standin_reply_column(zktarn_standin_reply* reply,
                                                      const double* values, int64_t n);
ZKTARN_STANDIN_C_API void zktarn_standin_reply_text(zktarn_standin_reply* reply, const char* text,
                                                    size_t text_length);

/* A function of the host's language in C: one input, valid during the call, and one output. */
typedef void (*zktarn_standin_function)(const zktarn_standin_array* input,
                                        zktarn_standin_reply* reply, void* context);

/*
 * Registers a function under a name and replaces the previous one. NULL removes the name. Returns
 * true if the name was registered before.
 */
ZKTARN_STANDIN_C_API bool zktarn_standin_set_function(const char* name, size_t name_length,
                                                      zktarn_standin_function function,
                                                      void* context);

/* Call log ------------------------------------------------------------------------------------- */

/* One call of a host operation: its arguments by kind, and its result. */
typedef struct zktarn_standin_call zktarn_standin_call;

ZKTARN_STANDIN_C_API bool zktarn_standin_log_calls(bool on);
ZKTARN_STANDIN_C_API void zktarn_standin_clear_call_log(void);
/* The number of logged calls. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_logged_call_count(void);
/*
 * A copy of a logged call, counted from 1, to be released by zktarn_standin_free_call; NULL if no
 * call has that number, or if memory is missing.
 */
ZKTARN_STANDIN_C_API zktarn_standin_call* zktarn_standin_logged_call(size_t number);
/* The call may be NULL. */
ZKTARN_STANDIN_C_API void zktarn_standin_free_call(zktarn_standin_call* call);

/* Addresses returned are valid as long as `call`; the number of elements is written to *count. */
ZKTARN_STANDIN_C_API zktarn_standin_operation
zktarn_standin_call_operation(const zktarn_standin_call* call);
ZKTARN_STANDIN_C_API const int64_t* zktarn_standin_call_integers(const zktarn_standin_call* call,
                                                                 size_t* count);
ZKTARN_STANDIN_C_API const double* zktarn_standin_call_reals(const zktarn_standin_call* call,
                                                             size_t* count);
ZKTARN_STANDIN_C_API const void* const*
zktarn_standin_call_addresses(const zktarn_standin_call* call, size_t* count);
ZKTARN_STANDIN_C_API size_t zktarn_standin_call_text_count(const zktarn_standin_call* call);
/* Text `number`, counted from 1, not ended by a zero byte; NULL for a number that no text has. */
ZKTARN_STANDIN_C_API const char* zktarn_standin_call_characters(const zktarn_standin_call* call,
                                                                size_t number, size_t* length);
ZKTARN_STANDIN_C_API int64_t zktarn_standin_call_result(const zktarn_standin_call* call);
ZKTARN_STANDIN_C_API void* zktarn_standin_call_result_address(const zktarn_standin_call* call);
/* The call as one line of text. */
ZKTARN_STANDIN_C_API size_t zktarn_standin_call_in_words(const zktarn_standin_call* call,
                                                         char* buffer, size_t capacity);

/* The answer of a script; each operation uses one part, qvxcallquarn800_ two. */
typedef struct zktarn_standin_answer zktarn_standin_answer;

ZKTARN_STANDIN_C_API void zktarn_standin_answer_number(zktarn_standin_answer* answer,
                                                       int64_t number);
ZKTARN_STANDIN_C_API void zktarn_standin_answer_address(zktarn_standin_answer* answer,
                                                        void* address);
ZKTARN_STANDIN_C_API void zktarn_standin_answer_reals(zktarn_standin_answer* answer,
                                                      const double* values, size_t n);
ZKTARN_STANDIN_C_API void zktarn_standin_answer_handles(zktarn_standin_answer* answer,
                                                        const int64_t* handles, size_t n);

/* Answers a call in place of the stand-in and returns true; false leaves it to the stand-in. */
typedef bool (*zktarn_standin_script)(const zktarn_standin_call* call,
                                      zktarn_standin_answer* answer, void* context);

/* A NULL script returns the operation to the stand-in. Returns true when a script was installed. */
ZKTARN_STANDIN_C_API bool zktarn_standin_answer_calls(zktarn_standin_operation operation,
                                                      zktarn_standin_script script, void* context);

/* Console -------------------------------------------------------------------------------------- */

typedef enum zktarn_standin_console {
    zktarn_console_show,
    zktarn_console_capture,
    zktarn_console_mirror
} zktarn_standin_console;

ZKTARN_STANDIN_C_API zktarn_standin_console
zktarn_standin_set_console(zktarn_standin_console where);
ZKTARN_STANDIN_C_API size_t zktarn_standin_console_text(char* buffer, size_t capacity);
ZKTARN_STANDIN_C_API size_t zktarn_standin_flushed_console_text(char* buffer, size_t capacity);
ZKTARN_STANDIN_C_API void zktarn_standin_clear_console(void);

/* Interrupts ----------------------------------------------------------------------------------- */

ZKTARN_STANDIN_C_API void zktarn_standin_raise_interrupt(void);
ZKTARN_STANDIN_C_API void zktarn_standin_interrupt_at_poll(int64_t k);
ZKTARN_STANDIN_C_API bool zktarn_standin_listen_for_sigint(bool on);

/* Records -------------------------------------------------------------------------------------- */

/*
 * Control of the records that the library makes, in an archive of its own: link
 * zktarn::standin_records_c, which replaces `operator new` of the whole program.
 */
void zktarn_standin_fail_record(int64_t k);
int64_t zktarn_standin_record_requests(void);
int64_t zktarn_standin_live_records(void);

#ifdef __cplusplus
}
#endif

#endif
