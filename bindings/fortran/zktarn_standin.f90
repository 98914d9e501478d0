!> Control of the stand-in host in Fortran.
!>
!> The C++ headers of zktarn_standin hold the contract of each procedure; here a comment gives what
!> differs. A name begins with standin_, and an operation of the host with op_. An output text is an
!> allocatable character, an output list an allocatable array. A callback is a module procedure
!> with the attribute bind(c); its context is an address that must stay valid until the callback is
!> replaced: c_loc of a variable with the attribute target, or c_null_ptr.
!>
!> The records of the library are controlled by module zktarn_standin_records.
module zktarn_standin
    use, intrinsic :: iso_c_binding
    implicit none
    private

    ! Operations, in the order of the libraries of the host

    enum, bind(c)
        enumerator :: op_qvMallocExOptim, op_qvFreeExOptim, op_instantiateRngOptim
        enumerator :: op_deleteRngOptim, op_getRandUniformOptim, op_getRngStateOptim
        enumerator :: op_setRngStateOptim, op_deleteRngStateOptim, op_assertOptim, op_ioFlushOptim
        enumerator :: op_utIsInterruptPending, op_qvcreatestructarray800, op_qvcreatestring800
        enumerator :: op_qvcreatedoublescalar800, op_qvcreatedoublematrix800, op_qvsetfield800
        enumerator :: op_qvsetfieldbynumber800, op_qvgetfieldnumber800, op_qvaddfield800
        enumerator :: op_qvgetpr800, op_qvcopyptrtoreal8800, op_qvcopyreal8toptr800
        enumerator :: op_qvdestroyarray800, op_qvxcallquarn800, op_qvxprintf800
    end enum
    public :: op_qvMallocExOptim, op_qvFreeExOptim, op_instantiateRngOptim
    public :: op_deleteRngOptim, op_getRandUniformOptim, op_getRngStateOptim
    public :: op_setRngStateOptim, op_deleteRngStateOptim, op_assertOptim, op_ioFlushOptim
    public :: op_utIsInterruptPending, op_qvcreatestructarray800, op_qvcreatestring800
    public :: op_qvcreatedoublescalar800, op_qvcreatedoublematrix800, op_qvsetfield800
    public :: op_qvsetfieldbynumber800, op_qvgetfieldnumber800, op_qvaddfield800
    public :: op_qvgetpr800, op_qvcopyptrtoreal8800, op_qvcopyreal8toptr800
    public :: op_qvdestroyarray800, op_qvxcallquarn800, op_qvxprintf800

    enum, bind(c)
        enumerator :: fault_bad_request, fault_double_free, fault_foreign_free
        enumerator :: fault_write_past_end, fault_write_before_start, fault_unknown_object
        enumerator :: fault_use_after_release, fault_wrong_kind, fault_out_of_range
        enumerator :: fault_bad_ownership, fault_unknown_function, fault_function_threw
    end enum
    public :: fault_bad_request, fault_double_free, fault_foreign_free, fault_write_past_end
    public :: fault_write_before_start, fault_unknown_object, fault_use_after_release
    public :: fault_wrong_kind, fault_out_of_range, fault_bad_ownership, fault_unknown_function
    public :: fault_function_threw

    enum, bind(c)
        enumerator :: array_structure, array_real_matrix, array_real_scalar, array_text
    end enum
    public :: array_structure, array_real_matrix, array_real_scalar, array_text

    enum, bind(c)
        enumerator :: console_show, console_capture, console_mirror
    end enum
    public :: console_show, console_capture, console_mirror

    ! Records

    !> A block of host memory.
    type, bind(c), public :: standin_block
        type(c_ptr) :: address = c_null_ptr
        integer(c_int64_t) :: nbytes = 0
        integer(c_int64_t) :: order = 0
    end type

    !> A generator, a snapshot or an array that has not been released.
    type, bind(c), public :: standin_live_object
        integer(c_int) :: made_by = 0
        integer(c_int64_t) :: number = 0
    end type

    !> A fault, valid during the call of the handler; standin_sentence, standin_origin and
    !> standin_place give its texts.
    type, bind(c), public :: standin_fault
        integer(c_int) :: kind = 0
        type(standin_block) :: concerned
        type(c_ptr) :: sentence = c_null_ptr
        integer(c_size_t) :: sentence_length = 0
        type(c_ptr) :: origin = c_null_ptr
        integer(c_size_t) :: origin_length = 0
        type(c_ptr) :: place = c_null_ptr
        integer(c_size_t) :: place_length = 0
    end type

    ! Procedures of the caller

    abstract interface
        subroutine standin_fault_handler(fault, context) bind(c)
            import :: c_ptr, standin_fault
            type(standin_fault), intent(in) :: fault
            type(c_ptr), value :: context
        end subroutine

        subroutine standin_assertion_handler(context) bind(c)
            import :: c_ptr
            type(c_ptr), value :: context
        end subroutine

        !> A function of the host's language: reads `input`, an array, and gives its result by
        !> standin_reply(reply, ...).
        subroutine standin_function(input, reply, context) bind(c)
            import :: c_ptr
            type(c_ptr), value :: input, reply, context
        end subroutine

        !> Answers a call of an operation in place of the stand-in, by the standin_answer_ procedures,
        !> and returns true; false leaves it to the stand-in.
        function standin_script(call, answer, context) bind(c) result(answered)
            import :: c_bool, c_ptr
            type(c_ptr), value :: call, answer, context
            logical(c_bool) :: answered
        end function

        !> Copies a text into a buffer and returns the length of the whole text.
        function text_source(buffer, capacity) bind(c) result(length)
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: length
        end function

        !> The same, for a text about the record at an address.
        function text_about_source(subject, buffer, capacity) bind(c) result(length)
            import :: c_ptr, c_size_t
            type(c_ptr), value :: subject
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: length
        end function
    end interface
    public :: standin_fault_handler, standin_assertion_handler, standin_function, standin_script

    ! Procedures

    interface
        function standin_calls(operation) bind(c, name="zktarn_standin_calls")
            import :: c_int, c_int64_t
            integer(c_int), value :: operation
            integer(c_int64_t) :: standin_calls
        end function

        subroutine c_fail_call(operation, k) bind(c, name="zktarn_standin_fail_call")
            import :: c_int, c_int64_t
            integer(c_int), value :: operation
            integer(c_int64_t), value :: k
        end subroutine

        subroutine standin_reset() bind(c, name="zktarn_standin_reset")
        end subroutine

        function c_version() bind(c, name="zktarn_standin_version")
            import :: c_ptr
            type(c_ptr) :: c_version
        end function

        function standin_requests() bind(c, name="zktarn_standin_requests")
            import :: c_int64_t
            integer(c_int64_t) :: standin_requests
        end function

        subroutine c_fail_request(k) bind(c, name="zktarn_standin_fail_request")
            import :: c_int64_t
            integer(c_int64_t), value :: k
        end subroutine

        subroutine c_fail_requests_from(k) bind(c, name="zktarn_standin_fail_requests_from")
            import :: c_int64_t
            integer(c_int64_t), value :: k
        end subroutine

        subroutine standin_fill_new_blocks(byte) bind(c, name="zktarn_standin_fill_new_blocks")
            import :: c_int32_t
            integer(c_int32_t), value :: byte
        end subroutine

        function standin_check_blocks() bind(c, name="zktarn_standin_check_blocks")
            import :: c_int64_t
            integer(c_int64_t) :: standin_check_blocks
        end function

        function standin_set_console(where) bind(c, name="zktarn_standin_set_console")
            import :: c_int
            integer(c_int), value :: where
            integer(c_int) :: standin_set_console
        end function

        subroutine standin_clear_console() bind(c, name="zktarn_standin_clear_console")
        end subroutine

        subroutine standin_raise_interrupt() bind(c, name="zktarn_standin_raise_interrupt")
        end subroutine

        subroutine c_interrupt_at_poll(k) bind(c, name="zktarn_standin_interrupt_at_poll")
            import :: c_int64_t
            integer(c_int64_t), value :: k
        end subroutine

        !> An absent handler restores the default, which writes the sentence and aborts.
        subroutine standin_set_fault_handler(handler, context) &
            bind(c, name="zktarn_standin_set_fault_handler")
            import :: c_ptr, standin_fault_handler
            procedure(standin_fault_handler), optional :: handler
            type(c_ptr), value :: context
        end subroutine

        !> An absent handler restores the default, which writes a sentence and aborts.
        subroutine standin_set_assertion_handler(handler, context) &
            bind(c, name="zktarn_standin_set_assertion_handler")
            import :: c_ptr, standin_assertion_handler
            procedure(standin_assertion_handler), optional :: handler
            type(c_ptr), value :: context
        end subroutine

        !> A copy of a live array, for the accessors below; standin_free_array releases it.
        function standin_inspect(handle) bind(c, name="zktarn_standin_inspect")
            import :: c_int64_t, c_ptr
            integer(c_int64_t), value :: handle
            type(c_ptr) :: standin_inspect
        end function

        !> Releases a copy of standin_inspect; a null address is ignored.
        subroutine standin_free_array(array) bind(c, name="zktarn_standin_free_array")
            import :: c_ptr
            type(c_ptr), value :: array
        end subroutine

        function standin_kind(array) bind(c, name="zktarn_standin_array_kind_of")
            import :: c_int, c_ptr
            type(c_ptr), value :: array
            integer(c_int) :: standin_kind
        end function

        function standin_rows(array) bind(c, name="zktarn_standin_array_rows")
            import :: c_int64_t, c_ptr
            type(c_ptr), value :: array
            integer(c_int64_t) :: standin_rows
        end function

        function standin_columns(array) bind(c, name="zktarn_standin_array_columns")
            import :: c_int64_t, c_ptr
            type(c_ptr), value :: array
            integer(c_int64_t) :: standin_columns
        end function

        function standin_scalar(array) bind(c, name="zktarn_standin_array_scalar")
            import :: c_double, c_ptr
            type(c_ptr), value :: array
            real(c_double) :: standin_scalar
        end function

        subroutine standin_clear_call_log() bind(c, name="zktarn_standin_clear_call_log")
        end subroutine

        !> The number of logged calls.
        function standin_logged_call_count() bind(c, name="zktarn_standin_logged_call_count")
            import :: c_size_t
            integer(c_size_t) :: standin_logged_call_count
        end function

        !> A copy of a logged call, counted from 1; standin_free_call releases it.
        function standin_logged_call(number) bind(c, name="zktarn_standin_logged_call")
            import :: c_ptr, c_size_t
            integer(c_size_t), value :: number
            type(c_ptr) :: standin_logged_call
        end function

        !> Releases a copy of standin_logged_call; a null address is ignored.
        subroutine standin_free_call(call) bind(c, name="zktarn_standin_free_call")
            import :: c_ptr
            type(c_ptr), value :: call
        end subroutine

        !> The operation that was called, one of the constants op_.
        function standin_call_operation(call) bind(c, name="zktarn_standin_call_operation")
            import :: c_int, c_ptr
            type(c_ptr), value :: call
            integer(c_int) :: standin_call_operation
        end function

        !> The number of texts among the arguments of a call.
        function standin_call_text_count(call) bind(c, name="zktarn_standin_call_text_count")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call
            integer(c_size_t) :: standin_call_text_count
        end function

        function standin_call_result(call) bind(c, name="zktarn_standin_call_result")
            import :: c_int64_t, c_ptr
            type(c_ptr), value :: call
            integer(c_int64_t) :: standin_call_result
        end function

        !> What the operation returned when that is an address; otherwise a null address.
        function standin_call_result_address(call) &
            bind(c, name="zktarn_standin_call_result_address")
            import :: c_ptr
            type(c_ptr), value :: call
            type(c_ptr) :: standin_call_result_address
        end function

        subroutine standin_answer_number(answer, number) &
            bind(c, name="zktarn_standin_answer_number")
            import :: c_int64_t, c_ptr
            type(c_ptr), value :: answer
            integer(c_int64_t), value :: number
        end subroutine

        subroutine standin_answer_address(answer, address) &
            bind(c, name="zktarn_standin_answer_address")
            import :: c_ptr
            type(c_ptr), value :: answer, address
        end subroutine

        !> The number of fields of a struct.
        function standin_field_count(array) bind(c, name="zktarn_standin_array_field_count")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: array
            integer(c_size_t) :: standin_field_count
        end function
    end interface
    public :: standin_calls, standin_reset, standin_requests, standin_fill_new_blocks
    public :: standin_check_blocks, standin_set_console, standin_clear_console
    public :: standin_raise_interrupt, standin_set_fault_handler, standin_set_assertion_handler
    public :: standin_inspect, standin_free_array, standin_kind, standin_rows, standin_columns
    public :: standin_scalar, standin_field_count
    public :: standin_clear_call_log, standin_logged_call_count, standin_logged_call
    public :: standin_free_call, standin_call_operation, standin_call_text_count
    public :: standin_call_result, standin_call_result_address
    public :: standin_answer_number, standin_answer_address
    public :: standin_log_calls, standin_record_origins, standin_origin, standin_place
    public :: standin_call_integers, standin_call_reals, standin_call_addresses
    public :: standin_call_characters, standin_call_in_words
    public :: standin_answer_reals, standin_answer_handles, standin_answer_calls
    public :: standin_leave_calls

    public :: standin_name, standin_fail_call, standin_fail_request, standin_fail_requests_from
    public :: standin_interrupt_at_poll, standin_huge_pages, standin_report_at_exit
    public :: standin_listen_for_sigint, standin_live_blocks, standin_live_objects
    public :: standin_memory_report, standin_report, standin_console_text
    public :: standin_version, standin_call_stack, standin_block_origin
    public :: standin_object_description, standin_object_origin
    public :: standin_flushed_console_text, standin_sentence, standin_reals, standin_characters
    public :: standin_field_name, standin_has_field, standin_field, standin_set_function
    public :: standin_remove_function

    !> What a function of the host's language returns: a scalar, a column or a text.
    interface standin_reply
        procedure :: reply_scalar
        module procedure reply_column, reply_text
    end interface
    public :: standin_reply

    !> Plans for the k-th call or request from now; k is an integer of 32 or of 64 bits.
    interface standin_fail_call
        module procedure fail_call_short, fail_call_long
    end interface
    interface standin_fail_request
        module procedure fail_request_short, fail_request_long
    end interface
    interface standin_fail_requests_from
        module procedure fail_requests_from_short, fail_requests_from_long
    end interface
    interface standin_interrupt_at_poll
        module procedure interrupt_at_poll_short, interrupt_at_poll_long
    end interface

    ! What the module procedures call

    interface
        function c_name(operation) bind(c, name="zktarn_standin_name")
            import :: c_int, c_ptr
            integer(c_int), value :: operation
            type(c_ptr) :: c_name
        end function

        function c_strlen(text) bind(c, name="strlen")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: text
            integer(c_size_t) :: c_strlen
        end function

        function c_huge_pages(on) bind(c, name="zktarn_standin_huge_pages")
            import :: c_bool
            logical(c_bool), value :: on
            logical(c_bool) :: c_huge_pages
        end function

        function c_report_at_exit(on) bind(c, name="zktarn_standin_report_at_exit")
            import :: c_bool
            logical(c_bool), value :: on
            logical(c_bool) :: c_report_at_exit
        end function

        function c_listen_for_sigint(on) bind(c, name="zktarn_standin_listen_for_sigint")
            import :: c_bool
            logical(c_bool), value :: on
            logical(c_bool) :: c_listen_for_sigint
        end function

        function c_log_calls(on) bind(c, name="zktarn_standin_log_calls")
            import :: c_bool
            logical(c_bool), value :: on
            logical(c_bool) :: c_log_calls
        end function

        function c_record_origins(on) bind(c, name="zktarn_standin_record_origins")
            import :: c_bool
            logical(c_bool), value :: on
            logical(c_bool) :: c_record_origins
        end function

        function c_call_integers(call, count) bind(c, name="zktarn_standin_call_integers")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call
            integer(c_size_t), intent(out) :: count
            type(c_ptr) :: c_call_integers
        end function

        function c_call_reals(call, count) bind(c, name="zktarn_standin_call_reals")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call
            integer(c_size_t), intent(out) :: count
            type(c_ptr) :: c_call_reals
        end function

        function c_call_addresses(call, count) bind(c, name="zktarn_standin_call_addresses")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call
            integer(c_size_t), intent(out) :: count
            type(c_ptr) :: c_call_addresses
        end function

        function c_call_characters(call, number, length) &
            bind(c, name="zktarn_standin_call_characters")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call
            integer(c_size_t), value :: number
            integer(c_size_t), intent(out) :: length
            type(c_ptr) :: c_call_characters
        end function

        function c_call_in_words(call, buffer, capacity) &
            bind(c, name="zktarn_standin_call_in_words")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: call, buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_call_in_words
        end function

        subroutine c_answer_reals(answer, values, n) bind(c, name="zktarn_standin_answer_reals")
            import :: c_double, c_ptr, c_size_t
            type(c_ptr), value :: answer
            real(c_double), intent(in) :: values(*)
            integer(c_size_t), value :: n
        end subroutine

        subroutine c_answer_handles(answer, handles, n) &
            bind(c, name="zktarn_standin_answer_handles")
            import :: c_int64_t, c_ptr, c_size_t
            type(c_ptr), value :: answer
            integer(c_int64_t), intent(in) :: handles(*)
            integer(c_size_t), value :: n
        end subroutine

        function c_answer_calls(operation, script, context) &
            bind(c, name="zktarn_standin_answer_calls")
            import :: c_bool, c_int, c_ptr, standin_script
            integer(c_int), value :: operation
            procedure(standin_script), optional :: script
            type(c_ptr), value :: context
            logical(c_bool) :: c_answer_calls
        end function

        function c_live_blocks(blocks, capacity) bind(c, name="zktarn_standin_live_blocks")
            import :: c_size_t, standin_block
            type(standin_block), intent(inout) :: blocks(*)
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_live_blocks
        end function

        function c_live_objects(objects, capacity) bind(c, name="zktarn_standin_live_objects")
            import :: c_size_t, standin_live_object
            type(standin_live_object), intent(inout) :: objects(*)
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_live_objects
        end function

        function c_memory_report(buffer, capacity) bind(c, name="zktarn_standin_memory_report")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_memory_report
        end function

        function c_block_origin(block, buffer, capacity) &
            bind(c, name="zktarn_standin_block_origin")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: block
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_block_origin
        end function

        function c_object_description(object, buffer, capacity) &
            bind(c, name="zktarn_standin_object_description")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: object
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_object_description
        end function

        function c_object_origin(object, buffer, capacity) &
            bind(c, name="zktarn_standin_object_origin")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: object
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_object_origin
        end function

        function c_call_stack(buffer, capacity) bind(c, name="zktarn_standin_call_stack")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_call_stack
        end function

        function c_report(buffer, capacity) bind(c, name="zktarn_standin_report")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_report
        end function

        function c_console_text(buffer, capacity) bind(c, name="zktarn_standin_console_text")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_console_text
        end function

        function c_flushed_console_text(buffer, capacity) &
            bind(c, name="zktarn_standin_flushed_console_text")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: buffer
            integer(c_size_t), value :: capacity
            integer(c_size_t) :: c_flushed_console_text
        end function

        function c_reals(array, count) bind(c, name="zktarn_standin_array_reals")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: array
            integer(c_size_t), intent(out) :: count
            type(c_ptr) :: c_reals
        end function

        function c_characters(array, length) bind(c, name="zktarn_standin_array_characters")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: array
            integer(c_size_t), intent(out) :: length
            type(c_ptr) :: c_characters
        end function

        function c_field_name(array, number, buffer, capacity) &
            bind(c, name="zktarn_standin_array_field_name")
            import :: c_ptr, c_size_t
            type(c_ptr), value :: array, buffer
            integer(c_size_t), value :: number, capacity
            integer(c_size_t) :: c_field_name
        end function

        function c_has_field(array, name, name_length) &
            bind(c, name="zktarn_standin_array_has_field")
            import :: c_bool, c_char, c_ptr, c_size_t
            type(c_ptr), value :: array
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value :: name_length
            logical(c_bool) :: c_has_field
        end function

        function c_field(array, name, name_length) bind(c, name="zktarn_standin_array_field")
            import :: c_char, c_ptr, c_size_t
            type(c_ptr), value :: array
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value :: name_length
            type(c_ptr) :: c_field
        end function

        subroutine reply_scalar(reply, value) bind(c, name="zktarn_standin_reply_scalar")
            import :: c_double, c_ptr
            type(c_ptr), value :: reply
            real(c_double), value :: value
        end subroutine

        subroutine c_reply_column(reply, values, n) bind(c, name="zktarn_standin_reply_column")
            import :: c_double, c_int64_t, c_ptr
            type(c_ptr), value :: reply
            real(c_double), intent(in) :: values(*)
            integer(c_int64_t), value :: n
        end subroutine

        subroutine c_reply_text(reply, text, text_length) bind(c, name="zktarn_standin_reply_text")
            import :: c_char, c_ptr, c_size_t
            type(c_ptr), value :: reply
            character(kind=c_char), intent(in) :: text(*)
            integer(c_size_t), value :: text_length
        end subroutine

        function c_set_function(name, name_length, function, context) &
            bind(c, name="zktarn_standin_set_function")
            import :: c_bool, c_char, c_ptr, c_size_t, standin_function
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value :: name_length
            procedure(standin_function), optional :: function
            type(c_ptr), value :: context
            logical(c_bool) :: c_set_function
        end function
    end interface

contains

    ! Texts

    !> The `length` characters at an address.
    function characters_at(address, length) result(text)
        type(c_ptr), intent(in) :: address
        integer(c_size_t), intent(in) :: length
        character(:), allocatable :: text
        character(kind=c_char), pointer :: characters(:)
        integer(c_size_t) :: i
        allocate (character(length) :: text)
        if (length < 1) return
        call c_f_pointer(address, characters, [length])
        do i = 1, length
            text(i:i) = characters(i)
        end do
    end function

    !> The text that `source` writes. It may become shorter between the two calls.
    function text_from(source) result(text)
        procedure(text_source) :: source
        character(:), allocatable :: text
        character(kind=c_char), allocatable, target :: buffer(:)
        integer(c_size_t) :: length
        length = source(c_null_ptr, 0_c_size_t)
        allocate (buffer(length + 1))
        length = min(length, source(c_loc(buffer), length + 1))
        text = characters_at(c_loc(buffer), length)
    end function

    !> The text that `source` writes about the record at `subject`.
    function text_about(source, subject) result(text)
        procedure(text_about_source) :: source
        type(c_ptr), intent(in) :: subject
        character(:), allocatable :: text
        character(kind=c_char), allocatable, target :: buffer(:)
        integer(c_size_t) :: length
        length = source(subject, c_null_ptr, 0_c_size_t)
        allocate (buffer(length + 1))
        length = min(length, source(subject, c_loc(buffer), length + 1))
        text = characters_at(c_loc(buffer), length)
    end function

    function standin_name(operation) result(name)
        integer(c_int), intent(in) :: operation
        character(:), allocatable :: name
        type(c_ptr) :: address
        address = c_name(operation)
        name = characters_at(address, c_strlen(address))
    end function

    !> The version of the stand-in host.
    function standin_version() result(version)
        character(:), allocatable :: version
        type(c_ptr) :: address
        address = c_version()
        version = characters_at(address, c_strlen(address))
    end function

    !> The calls in progress on this thread, one a line, innermost first.
    function standin_call_stack() result(text)
        character(:), allocatable :: text
        text = text_from(c_call_stack)
    end function

    function standin_memory_report() result(text)
        character(:), allocatable :: text
        text = text_from(c_memory_report)
    end function

    !> The memory report, and a line for each object that has not been released.
    function standin_report() result(text)
        character(:), allocatable :: text
        text = text_from(c_report)
    end function

    function standin_console_text() result(text)
        character(:), allocatable :: text
        text = text_from(c_console_text)
    end function

    function standin_flushed_console_text() result(text)
        character(:), allocatable :: text
        text = text_from(c_flushed_console_text)
    end function

    !> What happened, in one sentence.
    function standin_sentence(fault) result(text)
        type(standin_fault), intent(in) :: fault
        character(:), allocatable :: text
        text = characters_at(fault%sentence, fault%sentence_length)
    end function

    !> The calls that made the object concerned, one a line; empty unless origins are recorded.
    function standin_origin(fault) result(text)
        type(standin_fault), intent(in) :: fault
        character(:), allocatable :: text
        text = characters_at(fault%origin, fault%origin_length)
    end function

    !> The calls that led to the fault, one a line.
    function standin_place(fault) result(text)
        type(standin_fault), intent(in) :: fault
        character(:), allocatable :: text
        text = characters_at(fault%place, fault%place_length)
    end function

    ! The call log, and scripts

    function standin_call_integers(call) result(integers)
        type(c_ptr), intent(in) :: call
        integer(c_int64_t), allocatable :: integers(:)
        integer(c_int64_t), pointer :: them(:)
        type(c_ptr) :: address
        integer(c_size_t) :: count
        address = c_call_integers(call, count)
        allocate (integers(count))
        if (count < 1) return
        call c_f_pointer(address, them, [count])
        integers = them
    end function

    function standin_call_reals(call) result(reals)
        type(c_ptr), intent(in) :: call
        real(c_double), allocatable :: reals(:)
        real(c_double), pointer :: them(:)
        type(c_ptr) :: address
        integer(c_size_t) :: count
        address = c_call_reals(call, count)
        allocate (reals(count))
        if (count < 1) return
        call c_f_pointer(address, them, [count])
        reals = them
    end function

    function standin_call_addresses(call) result(addresses)
        type(c_ptr), intent(in) :: call
        type(c_ptr), allocatable :: addresses(:)
        type(c_ptr), pointer :: them(:)
        type(c_ptr) :: address
        integer(c_size_t) :: count
        address = c_call_addresses(call, count)
        allocate (addresses(count))
        if (count < 1) return
        call c_f_pointer(address, them, [count])
        addresses = them
    end function

    !> Text `number` of a call, counted from 1; empty for a number that no text has.
    function standin_call_characters(call, number) result(text)
        type(c_ptr), intent(in) :: call
        integer, intent(in) :: number
        character(:), allocatable :: text
        type(c_ptr) :: address
        integer(c_size_t) :: length
        address = c_call_characters(call, int(number, c_size_t), length)
        text = characters_at(address, length)
    end function

    !> A call as one line of text.
    function standin_call_in_words(call) result(text)
        type(c_ptr), intent(in) :: call
        character(:), allocatable :: text
        text = text_about(c_call_in_words, call)
    end function

    subroutine standin_answer_reals(answer, values)
        type(c_ptr), intent(in) :: answer
        real(c_double), intent(in), contiguous :: values(:)
        call c_answer_reals(answer, values, size(values, kind=c_size_t))
    end subroutine

    subroutine standin_answer_handles(answer, handles)
        type(c_ptr), intent(in) :: answer
        integer(c_int64_t), intent(in), contiguous :: handles(:)
        call c_answer_handles(answer, handles, size(handles, kind=c_size_t))
    end subroutine

    !> Answers the calls of an operation by a script.
    subroutine standin_answer_calls(operation, script, context)
        integer(c_int), intent(in) :: operation
        procedure(standin_script) :: script
        type(c_ptr), intent(in) :: context
        logical(c_bool) :: replaced
        replaced = c_answer_calls(operation, script, context)
    end subroutine

    !> Returns an operation to the stand-in.
    subroutine standin_leave_calls(operation)
        integer(c_int), intent(in) :: operation
        logical(c_bool) :: replaced
        replaced = c_answer_calls(operation, context=c_null_ptr)
    end subroutine

    ! Failures and interrupts that are planned

    subroutine fail_call_short(operation, k)
        integer(c_int), intent(in) :: operation
        integer(c_int32_t), intent(in) :: k
        call c_fail_call(operation, int(k, c_int64_t))
    end subroutine

    subroutine fail_call_long(operation, k)
        integer(c_int), intent(in) :: operation
        integer(c_int64_t), intent(in) :: k
        call c_fail_call(operation, k)
    end subroutine

    subroutine fail_request_short(k)
        integer(c_int32_t), intent(in) :: k
        call c_fail_request(int(k, c_int64_t))
    end subroutine

    subroutine fail_request_long(k)
        integer(c_int64_t), intent(in) :: k
        call c_fail_request(k)
    end subroutine

    subroutine fail_requests_from_short(k)
        integer(c_int32_t), intent(in) :: k
        call c_fail_requests_from(int(k, c_int64_t))
    end subroutine

    subroutine fail_requests_from_long(k)
        integer(c_int64_t), intent(in) :: k
        call c_fail_requests_from(k)
    end subroutine

    subroutine interrupt_at_poll_short(k)
        integer(c_int32_t), intent(in) :: k
        call c_interrupt_at_poll(int(k, c_int64_t))
    end subroutine

    subroutine interrupt_at_poll_long(k)
        integer(c_int64_t), intent(in) :: k
        call c_interrupt_at_poll(k)
    end subroutine

    ! Settings: each returns the previous one

    function standin_huge_pages(on) result(previous)
        logical, intent(in) :: on
        logical :: previous
        previous = c_huge_pages(logical(on, c_bool))
    end function

    function standin_log_calls(on) result(previous)
        logical, intent(in) :: on
        logical :: previous
        previous = c_log_calls(logical(on, c_bool))
    end function

    function standin_record_origins(on) result(previous)
        logical, intent(in) :: on
        logical :: previous
        previous = c_record_origins(logical(on, c_bool))
    end function

    function standin_report_at_exit(on) result(previous)
        logical, intent(in) :: on
        logical :: previous
        previous = c_report_at_exit(logical(on, c_bool))
    end function

    function standin_listen_for_sigint(on) result(previous)
        logical, intent(in) :: on
        logical :: previous
        previous = c_listen_for_sigint(logical(on, c_bool))
    end function

    ! Leaks

    function standin_live_blocks() result(blocks)
        type(standin_block), allocatable :: blocks(:)
        type(standin_block) :: none(1)
        integer(c_size_t) :: count
        count = c_live_blocks(none, 0_c_size_t)
        allocate (blocks(count))
        if (count > 0) count = c_live_blocks(blocks, count)
    end function

    function standin_live_objects() result(objects)
        type(standin_live_object), allocatable :: objects(:)
        type(standin_live_object) :: none(1)
        integer(c_size_t) :: count
        count = c_live_objects(none, 0_c_size_t)
        allocate (objects(count))
        if (count > 0) count = c_live_objects(objects, count)
    end function

    !> The calls that allocated a live block, one a line, innermost first; empty unless origins are
    !> recorded, or if no live block has that address.
    function standin_block_origin(block) result(text)
        type(standin_block), intent(in), target :: block
        character(:), allocatable :: text
        text = text_about(c_block_origin, c_loc(block))
    end function

    !> A live object in words; empty if the object has been released.
    function standin_object_description(object) result(text)
        type(standin_live_object), intent(in), target :: object
        character(:), allocatable :: text
        text = text_about(c_object_description, c_loc(object))
    end function

    !> The calls that made a live object, as for a block; empty if the object has been released.
    function standin_object_origin(object) result(text)
        type(standin_live_object), intent(in), target :: object
        character(:), allocatable :: text
        text = text_about(c_object_origin, c_loc(object))
    end function

    ! Arrays

    !> A copy of the numbers of a real array, column by column.
    function standin_reals(array) result(reals)
        type(c_ptr), intent(in) :: array
        real(c_double), allocatable :: reals(:)
        real(c_double), pointer :: numbers(:)
        type(c_ptr) :: address
        integer(c_size_t) :: count
        address = c_reals(array, count)
        allocate (reals(count))
        if (count < 1) return
        call c_f_pointer(address, numbers, [count])
        reals = numbers
    end function

    !> The characters of a text, trailing blanks included.
    function standin_characters(array) result(text)
        type(c_ptr), intent(in) :: array
        character(:), allocatable :: text
        type(c_ptr) :: address
        integer(c_size_t) :: length
        address = c_characters(array, length)
        text = characters_at(address, length)
    end function

    !> The name of field `number`, counted from 1; empty for a number that no field has.
    function standin_field_name(array, number) result(name)
        type(c_ptr), intent(in) :: array
        integer, intent(in) :: number
        character(:), allocatable :: name
        character(kind=c_char), allocatable, target :: buffer(:)
        integer(c_size_t) :: length
        length = c_field_name(array, int(number, c_size_t), c_null_ptr, 0_c_size_t)
        allocate (buffer(length + 1))
        length = c_field_name(array, int(number, c_size_t), c_loc(buffer), length + 1)
        name = characters_at(c_loc(buffer), length)
    end function

    !> Whether a struct has a field of that name.
    function standin_has_field(array, name) result(has)
        type(c_ptr), intent(in) :: array
        character(*), intent(in) :: name
        logical :: has
        has = c_has_field(array, name, len(name, kind=c_size_t))
    end function

    !> The value of a field; part of the array.
    function standin_field(array, name) result(field)
        type(c_ptr), intent(in) :: array
        character(*), intent(in) :: name
        type(c_ptr) :: field
        field = c_field(array, name, len(name, kind=c_size_t))
    end function

    ! Functions of the host's language

    subroutine reply_column(reply, values)
        type(c_ptr), intent(in) :: reply
        real(c_double), intent(in), contiguous :: values(:)
        call c_reply_column(reply, values, size(values, kind=c_int64_t))
    end subroutine

    subroutine reply_text(reply, text)
        type(c_ptr), intent(in) :: reply
        character(*), intent(in) :: text
        call c_reply_text(reply, text, len(text, kind=c_size_t))
    end subroutine

    !> Registers a function under a name and replaces the previous one.
    subroutine standin_set_function(name, function, context)
        character(*), intent(in) :: name
        procedure(standin_function) :: function
        type(c_ptr), intent(in) :: context
        logical(c_bool) :: replaced
        replaced = c_set_function(name, len(name, kind=c_size_t), function, context)
    end subroutine

    !> Removes the function with that name, if there is one.
    subroutine standin_remove_function(name)
        character(*), intent(in) :: name
        logical(c_bool) :: replaced
        replaced = c_set_function(name, len(name, kind=c_size_t), context=c_null_ptr)
    end subroutine
end module
