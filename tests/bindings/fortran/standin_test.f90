!> The control of the stand-in host, each part of it.
module standin_cases
    use, intrinsic :: iso_c_binding
    use checks
    use zktarn_standin
    use zktarn_standin_records
    use zktarn_util
    implicit none

    integer, parameter :: dp = c_double

    type :: seen
        integer :: count = 0
        integer :: kind = -1
        character(:), allocatable :: sentence
    end type

contains

    subroutine test_operations()
        type(c_ptr) :: block
        integer :: i
        do i = op_qvMallocExOptim, op_qvxprintf800
            call check(len(standin_name(i)) > 0, 'name')
        end do
        call check(standin_name(op_qvxprintf800) == 'qvxprintf800_', 'last name')
        call check(standin_name(op_qvMallocExOptim) == 'qvMallocExOptim', 'first name')
        call standin_reset()
        block = mallocate(8_c_int64_t)
        call mdeallocate(block)
        call check(standin_calls(op_qvMallocExOptim) == 1, 'one call')
        call standin_fail_call(op_qvMallocExOptim, 1_c_int64_t)
        call check(.not. c_associated(mallocate(8_c_int64_t)), 'failed')
        call standin_fail_requests_from(1)
        call check(.not. c_associated(mallocate(8_c_int64_t)), 'first of all')
        call check(.not. c_associated(mallocate(8_c_int64_t)), 'second of all')
        call standin_fail_requests_from(0_c_int64_t)
    end subroutine

    subroutine test_memory()
        type(i1_1d_array) :: a
        integer(c_int64_t) :: requests
        logical :: previous
        requests = standin_requests()
        call standin_fill_new_blocks(17)
        call check(allocmem(a, 5) == 1, 'allocated')
        call check(all(elements(a) == 17), 'filled')
        call standin_fill_new_blocks(-1)
        call check(standin_requests() == requests + 1, 'requests')
        call check(index(standin_memory_report(), '5 bytes') > 0, 'memory report')
        call check(len(standin_report()) >= len(standin_memory_report()), 'report')
        call freemem(a)
        previous = standin_huge_pages(.false.)
        call check(.not. standin_huge_pages(previous), 'huge pages')
        call check(standin_report_at_exit(.false.), 'report at exit')
        call check(.not. standin_report_at_exit(.true.), 'report at exit, previous')
        previous = standin_listen_for_sigint(.false.)
        call check(.not. standin_listen_for_sigint(previous), 'SIGINT')
    end subroutine

    subroutine note_fault(fault, context) bind(c)
        type(standin_fault), intent(in) :: fault
        type(c_ptr), value :: context
        type(seen), pointer :: it
        call c_f_pointer(context, it)
        it%count = it%count + 1
        it%kind = fault%kind
        it%sentence = standin_sentence(fault)
    end subroutine

    subroutine note_assertion(context) bind(c)
        type(c_ptr), value :: context
        type(seen), pointer :: it
        call c_f_pointer(context, it)
        it%count = it%count + 1
    end subroutine

    subroutine test_handlers()
        type(seen), target :: faults, assertions
        type(c_ptr) :: block
        call standin_set_fault_handler(note_fault, c_loc(faults))
        block = mallocate(33_c_int64_t)
        call mdeallocate(block)
        call mdeallocate(block)
        call check(faults%count == 1 .and. faults%kind == fault_double_free, 'double free')
        call check(index(faults%sentence, '33') > 0, 'its sentence')
        call standin_set_fault_handler(context=c_null_ptr)
        call standin_set_assertion_handler(note_assertion, c_loc(assertions))
        call tarnassert(flag_true)
        call tarnassert(flag_false)
        call check(assertions%count == 1, 'assertion')
        call standin_set_assertion_handler(context=c_null_ptr)
    end subroutine

    subroutine test_arrays()
        integer(c_int64_t) :: structure
        type(c_ptr) :: array, column
        type(standin_live_object), allocatable :: live(:)
        structure = qvinitcbarray('abc')
        call addrealvectoqvstruct(structure, 'v', [1.0_dp, 2.0_dp, 3.0_dp])
        live = standin_live_objects()
        call check(size(live) == 1, 'one live object')
        call check(live(1)%made_by == op_qvcreatestructarray800, 'made by')
        call check(live(1)%number == structure, 'number')
        array = standin_inspect(structure)
        call qvfreecbarray(structure)
        call check(standin_kind(array) == array_structure, 'kind')
        call check(standin_rows(array) == 1 .and. standin_columns(array) == 1, 'shape')
        call check(standin_field_count(array) == 2, 'fields')
        call check(standin_field_name(array, 1) == 'phase', 'first field')
        call check(standin_field_name(array, 2) == 'v', 'second field')
        call check(len(standin_field_name(array, 3)) == 0, 'no third field')
        call check(.not. standin_has_field(array, 'w'), 'no other field')
        column = standin_field(array, 'v')
        call check(standin_kind(column) == array_real_matrix .and. standin_rows(column) == 3, 'column')
        call standin_free_array(array)
    end subroutine

    subroutine reply_column(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        call check(standin_kind(input) == array_structure .and. .not. c_associated(context), 'input')
        call standin_reply(reply, [1.0_dp, 5.0_dp])
    end subroutine

    subroutine reply_text(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        call check(c_associated(input) .and. .not. c_associated(context), 'input')
        call standin_reply(reply, 'stop')
    end subroutine

    subroutine test_functions()
        type(seen), target :: faults
        integer(c_int64_t) :: structure
        integer(flag_kind) :: stop
        structure = qvinitcbarray('p')
        call standin_set_function('tarnCallback', reply_column, c_null_ptr)
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(stop == 1, 'the first number counts')
        call standin_set_fault_handler(note_fault, c_loc(faults))
        call standin_set_function('tarnCallback', reply_text, c_null_ptr)
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(stop == 0 .and. faults%count > 0, 'a text is no answer')
        call standin_remove_function('tarnCallback')
        faults%count = 0
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(faults%count > 0 .and. faults%kind == fault_unknown_function, 'no function')
        call standin_set_fault_handler(context=c_null_ptr)
        call qvfreecbarray(structure)
    end subroutine

    function answer(call, given, context) bind(c) result(answered)
        type(c_ptr), value :: call, given, context
        logical(c_bool) :: answered
        integer(c_int64_t), allocatable :: sizes(:)
        sizes = standin_call_integers(call)
        answered = sizes(1) /= 99
        if (answered) call standin_answer_address(given, context)
    end function

    subroutine test_call_log()
        real(dp), target :: storage(4)
        integer(c_int64_t) :: structure
        type(c_ptr) :: call, block
        call check(.not. standin_log_calls(.true.), 'initially off')
        structure = qvinitcbarray('cutting')
        call check(standin_log_calls(.false.), 'was on')
        call check(standin_logged_call_count() == 3, 'three calls')
        call = standin_logged_call(2_c_size_t)
        call check(standin_call_operation(call) == op_qvcreatestring800, 'operation')
        call check(standin_call_text_count(call) == 1, 'one text')
        call check(standin_call_characters(call, 1) == 'cutting', 'its characters')
        call check(len(standin_call_characters(call, 2)) == 0, 'no second text')
        call check(standin_call_result(call) /= 0, 'a handle')
        call check(size(standin_call_reals(call)) == 0, 'no reals')
        call check(size(standin_call_addresses(call)) == 0, 'no addresses')
        call check(index(standin_call_in_words(call), 'qvcreatestring800_("cutting") = ') == 1, &
            'in words')
        call standin_free_call(call)
        call standin_clear_call_log()
        call check(standin_logged_call_count() == 0, 'empty')
        call qvfreecbarray(structure)

        call standin_answer_calls(op_qvMallocExOptim, answer, c_loc(storage))
        block = mallocate(24_c_int64_t)
        call check(c_associated(block, c_loc(storage)), 'scripted')
        block = mallocate(99_c_int64_t)
        call check(size(standin_live_blocks()) == 1, 'left to the stand-in')
        call mdeallocate(block)
        call standin_leave_calls(op_qvMallocExOptim)
    end subroutine

    subroutine test_origins()
        type(standin_block), allocatable :: blocks(:)
        type(standin_live_object), allocatable :: objects(:)
        type(c_ptr) :: block
        integer(c_int64_t) :: structure
        logical :: recorded
        recorded = standin_record_origins(.true.)
        block = mallocate(16_c_int64_t)
        structure = qvinitcbarray('cutting')
        blocks = standin_live_blocks()
        objects = standin_live_objects()
        call check(size(blocks) == 1 .and. size(objects) == 1, 'one of each')
        call check(index(standin_block_origin(blocks(1)), 'mallocate') > 0, 'origin of a block')
        call check(index(standin_object_origin(objects(1)), 'qvinitcbarray') > 0, &
            'origin of an object')
        call check(index(standin_object_description(objects(1)), 'struct') > 0, 'description')
        call qvfreecbarray(structure)
        call mdeallocate(block)
        call check(len(standin_block_origin(blocks(1))) == 0, 'no block')
        call check(len(standin_object_origin(objects(1))) == 0, 'no object')
        call check(len(standin_object_description(objects(1))) == 0, 'nothing to describe')
        call check(index(standin_call_stack(), 'standin_call_stack') > 0, 'calls in progress')
        call check(standin_record_origins(recorded), 'was on')
        call check(standin_version() == zktarn_version(), 'version')
    end subroutine

    subroutine test_records()
        type(vector), pointer :: v
        type(cbdata), pointer :: cb
        integer(c_int64_t) :: requests, live
        requests = standin_record_requests()
        live = standin_live_records()
        call check(vector_alloc(v, 3) == 1, 'a vector')
        call cbinit(cb)
        call check(standin_record_requests() == requests + 2, 'two requests')
        call check(standin_live_records() == live + 2, 'two records')
        call vector_free(v)
        call cbfree(cb)
        call check(standin_live_records() == live, 'released')
        call standin_fail_record(1)
        call check(vector_alloc(v, 3) == 0, 'refused')
        call check(.not. associated(v), 'no vector')
        call standin_fail_record(2_c_int64_t)
        call cbinit(cb)
        call check(vector_alloc(v, 3) == 0, 'the second one refused')
        call cbfree(cb)
        call standin_fail_record(1)
        call standin_fail_record(0)
        call check(vector_alloc(v, 3) == 1, 'no plan')
        call vector_free(v)
        call check(standin_live_records() == live, 'none left')
    end subroutine

    subroutine test_console_and_interrupts()
        type(cbdata), pointer :: cb
        call check(standin_set_console(console_capture) == console_show, 'console')
        call cbprintdisplay(0, 0, 1, 'line  ')
        call check(standin_console_text() == 'line  '//new_line('a'), 'text')
        call check(standin_set_console(console_show) == console_capture, 'console again')
        call standin_clear_console()
        call cbinit(cb)
        call standin_raise_interrupt()
        call check(cbhasinterrupt(0, poll_for_interrupts) == 1, 'interrupt')
        call cbinit_again(cb)
    end subroutine

    subroutine cbinit_again(cb)
        type(cbdata), pointer, intent(inout) :: cb
        call cbfree(cb)
        call cbinit(cb)
        call check(cbhasinterrupt(0, 0) == 0, 'no interrupt')
        call cbfree(cb)
    end subroutine
end module

program standin_test
    use standin_cases
    implicit none
    call test_operations()
    call test_call_log()
    call test_memory()
    call test_origins()
    call test_records()
    call test_handlers()
    call test_arrays()
    call test_functions()
    call test_console_and_interrupts()
    call finish()
end program
