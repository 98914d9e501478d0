!> The bridge to the host: texts of every length, structs, the output function, values in slots.
module bridge_cases
    use, intrinsic :: iso_c_binding
    use checks
    use zktarn_standin
    use zktarn_util
    implicit none

    integer, parameter :: dp = c_double, longest = 300

    type :: output_function
        real(dp) :: answer = 0
        integer :: calls = 0
        character(:), allocatable :: phase
    end type

    type :: counts
        integer :: copied = 0, destroyed = 0
        logical :: refuse = .false.
    end type

    !> A value that owns a block of host memory.
    type :: note
        type(i4_1d_array) :: numbers
        integer :: number = 0
    end type

contains

    !> A text of `length` characters that ends in up to three blanks.
    function text_of(length) result(text)
        integer, intent(in) :: length
        character(length) :: text
        integer :: i
        do i = 1, length
            text(i:i) = merge(' ', achar(iachar('A') + mod(i, 26)), i + 3 > length)
        end do
    end function

    subroutine test_phase_of_every_length()
        integer :: length
        integer(c_int64_t) :: structure
        type(c_ptr) :: seen
        character(:), allocatable :: held
        do length = 0, longest
            structure = qvinitcbarray(text_of(length))
            seen = standin_inspect(structure)
            held = standin_characters(standin_field(seen, 'phase'))
            call check(len(held) == length .and. held == text_of(length), 'phase')
            call standin_free_array(seen)
            call qvfreecbarray(structure)
            call check(structure == 0, 'handle cleared')
        end do
    end subroutine

    subroutine test_fields()
        integer :: length
        integer(c_int64_t) :: structure
        type(c_ptr) :: seen
        real(dp) :: matrix(2, 3)
        matrix = reshape([1, 2, 3, 4, 5, 6], [2, 3])
        do length = 1, 40
            structure = qvinitcbarray('p')
            call addrealscalartoqvstruct(structure, repeat('x', length), 4.0_dp)
            call addrealvectoqvstruct(structure, repeat('x', length), [1.5_dp, 2.5_dp])
            call addrealvectoqvstruct(structure, 'row', matrix(2, :))
            call addrealvectoqvstruct(structure, 'none', matrix(1, :0))
            call addrealscalartoqvstruct(structure, 's', 7.0_dp)
            seen = standin_inspect(structure)
            call check(standin_has_field(seen, repeat('x', length)), 'field')
            call check(all(standin_reals(standin_field(seen, repeat('x', length))) == &
                [1.5_dp, 2.5_dp]), 'column')
            call check(all(standin_reals(standin_field(seen, 'row')) == [2, 4, 6]), 'row')
            call check(size(standin_reals(standin_field(seen, 'none'))) == 0, 'empty')
            call check(standin_scalar(standin_field(seen, 's')) == 7, 'scalar')
            call standin_free_array(seen)
            call qvfreecbarray(structure)
        end do
    end subroutine

    subroutine test_line_of_every_length()
        integer :: length, previous
        character(:), allocatable :: seen
        previous = standin_set_console(console_capture)
        do length = 0, longest
            call standin_clear_console()
            call cbprintdisplay(0, 0, 2, text_of(length))
            seen = standin_flushed_console_text()
            call check(len(seen) == length + 1 .and. seen == text_of(length)//new_line('a'), 'line')
        end do
        call standin_clear_console()
        call cbprintdisplay(0, 0, display_off, 'off')
        call cbprintdisplay(stopped_by_output_function, 0, 2, 'stopped')
        call check(len(standin_console_text()) == 0, 'nothing printed')
        previous = standin_set_console(previous)
    end subroutine

    subroutine test_lowercasee()
        integer :: length
        character(longest) :: text
        character(12) :: number
        do length = 0, longest
            text = repeat('E', longest)
            call lowercasee(text(:length))
            call check(text == repeat('e', length)//repeat('E', longest - length), 'lower-case e')
        end do
        number = '1.5E+03'
        call lowercasee(number)
        call check(number == '1.5e+03', 'number with trailing blanks')
    end subroutine

    subroutine called(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        type(output_function), pointer :: function
        call c_f_pointer(context, function)
        function%calls = function%calls + 1
        function%phase = standin_characters(standin_field(input, 'phase'))
        call standin_reply(reply, function%answer)
    end subroutine

    subroutine test_output_function()
        type(output_function), target :: function
        integer(c_int64_t) :: structure
        integer(flag_kind) :: stop
        structure = qvinitcbarray('iter  ')
        call standin_set_function('tarnCallback', called, c_loc(function))
        function%answer = 1.9_dp
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(stop == 1 .and. function%calls == 1, 'stops')
        call check(len(function%phase) == 6 .and. function%phase == 'iter  ', 'phase')
        function%answer = 2
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(stop == 0 .and. function%calls == 2, 'goes on')
        call qvcalloutputfcn(structure, stop, stopped_by_output_function, 0)
        call check(stop == 0 .and. function%calls == 2, 'not called after the stop')
        call standin_fail_call(op_qvxcallquarn800, 1)
        call qvcalloutputfcn(structure, stop, 0, 0)
        call check(stop == 0 .and. function%calls == 2, 'the call fails')
        call standin_remove_function('tarnCallback')
        call qvfreecbarray(structure)
    end subroutine

    subroutine test_interrupt()
        type(cbdata), pointer :: cb
        call cbinit(cb)
        call check(associated(cb), 'record')
        call check(cb%nodes_explored == 0 .and. cb%upper_bound == huge(1.0_dp), 'defaults')
        call check(cbhasinterrupt(0, 0) == 0, 'no interrupt')
        call check(cbhasinterrupt(stopped_by_output_function, 0) == 1, 'stopped')
        call standin_interrupt_at_poll(2)
        call check(cbhasinterrupt(0, poll_for_interrupts) == 0, 'first poll')
        call check(cbhasinterrupt(0, poll_for_interrupts) == 1, 'second poll')
        call check(cbhasinterrupt(0, 0) == 1, 'remembered')
        call cbfree(cb)
        call check(.not. associated(cb), 'released')
        call cbfree(cb)
        call cbinit(cb)
        call check(cbhasinterrupt(0, 0) == 0, 'forgotten')
        call cbfree(cb)
    end subroutine

    subroutine test_codes()
        call check(cbstopfromoutputfcn(3) == 1 .and. cbstopfromoutputfcn(1) == 0, 'stop')
        call check(cbhasoutputfcn(1) == 1 .and. cbhasoutputfcn(0) == 0, 'output function')
        call check(cbisdisplayoff(0) == 1 .and. cbisdisplayoff(1) == 0, 'off')
        call check(cbisdisplayfinal(1) == 1 .and. cbisdisplayfinal(2) == 0, 'final')
        call check(cbisctrlcon(1) == 1 .and. cbisctrlcon(0) == 0, 'interrupts')
    end subroutine

    subroutine test_host_failures()
        integer(c_int64_t) :: structure
        call standin_fail_call(op_qvcreatestructarray800, 1)
        structure = qvinitcbarray('p')
        call check(structure == 0, 'no struct')
        call qvfreecbarray(structure)
        structure = qvinitcbarray('p')
        call standin_fail_call(op_qvcreatedoublescalar800, 1)
        call addrealscalartoqvstruct(structure, 's', 1.0_dp)
        call standin_fail_call(op_qvcreatedoublematrix800, 1)
        call addrealvectoqvstruct(structure, 'v', [1.0_dp])
        call qvfreecbarray(structure)
        call check(size(standin_live_objects()) == 0, 'nothing left behind')
        call standin_reset()
    end subroutine

    function copy_note(value, context) bind(c) result(copied)
        type(c_ptr), value :: value, context
        integer(c_int64_t) :: copied
        type(note), pointer :: copy
        type(counts), pointer :: count
        type(i4_1d_array) :: original
        integer(c_int32_t), pointer :: numbers(:), originals(:)
        call c_f_pointer(value, copy)
        call c_f_pointer(context, count)
        copied = 0
        if (count%refuse) return
        original = copy%numbers
        if (allocmem(copy%numbers, original%extent(1)) == 0) return
        numbers => elements(copy%numbers)
        originals => elements(original)
        numbers = originals
        count%copied = count%copied + 1
        copied = 1
    end function

    subroutine destroy_note(value, context) bind(c)
        type(c_ptr), value :: value, context
        type(note), pointer :: gone
        type(counts), pointer :: count
        call c_f_pointer(value, gone)
        call c_f_pointer(context, count)
        call freemem(gone%numbers)
        count%destroyed = count%destroyed + 1
    end subroutine

    subroutine test_values()
        type(note) :: value
        type(note), pointer :: stored
        type(counts), target :: count
        type(cbdatalist) :: list, copies(2)
        integer(c_int32_t), pointer :: numbers(:)
        integer(c_size_t) :: n
        call cbdatalistinitialise(list)
        call check(.not. c_associated(stored_value(list)), 'empty')
        call check(allocmem(value%numbers, 3) == 1, 'numbers')
        numbers => elements(value%numbers)
        numbers = [1, 2, 3]
        value%number = 7
        call check(store_value(list, value, c_sizeof_note(value), copy_note, destroy_note, &
            c_loc(count)) == 1, 'stored')
        call check(c_associated(stored_value(list, n)), 'found')
        call check(n == c_sizeof_note(value), 'size')
        copies = list
        call cbdatalistcopy(copies)
        call check(count%copied == 2, 'copied')
        call c_f_pointer(stored_value(copies(2)), stored)
        call check(stored%number == 7 .and. all(elements(stored%numbers) == [1, 2, 3]), 'contents')
        call check(.not. c_associated(stored%numbers%data, value%numbers%data), 'independent')
        call cbdatalistfinalise(copies)
        count%refuse = .true.
        copies(1) = list
        call cbdatalistcopy(copies(1))
        call check(.not. c_associated(stored_value(copies(1))), 'refused copy')
        call cbdatalistfinalise(copies(1))
        call cbdatalistfinalise(list)
        call check(count%destroyed == 3, 'destroyed')
        call check(store_value(list, n=0_c_size_t, context=c_null_ptr) == 1, 'a value of no bytes')
        call cbdatalistfinalise(list)
    end subroutine

    function c_sizeof_note(value) result(bytes)
        type(note), intent(in) :: value
        integer(c_size_t) :: bytes
        bytes = storage_size(value, c_size_t) / 8
    end function

    subroutine test_initialise()
        type(cbstatusdata) :: status(2)
        type(cbdata) :: data
        status%nodes = 9
        call cbstatusdatainitialise(status)
        call check(all(status%nodes == 0), 'status')
        data%node = 5
        call cbdatainitialise(data)
        call check(data%node == -1 .and. data%gap == huge(1.0_dp), 'data')
    end subroutine
end module

program bridge_test
    use bridge_cases
    implicit none
    call test_phase_of_every_length()
    call test_fields()
    call test_line_of_every_length()
    call test_lowercasee()
    call test_output_function()
    call test_interrupt()
    call test_codes()
    call test_host_failures()
    call test_values()
    call test_initialise()
    call check(size(standin_live_blocks()) == 0, 'every block given back')
    call check(size(standin_live_objects()) == 0, 'every object given back')
    call check(zktarn_version() == '0.1.0', 'version')
    call finish()
end program
