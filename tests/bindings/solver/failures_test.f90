!> The solver in Fortran on a failing host: it reports the failure or continues, and leaks nothing.
module output_functions
    use, intrinsic :: iso_c_binding
    use checks
    use zktarn_standin
    implicit none

contains

    subroutine go_on(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        call check(c_associated(input) .and. .not. c_associated(context), 'input')
        call standin_reply(reply, 0.0_c_double)
    end subroutine
end module

program failures_test
    use, intrinsic :: iso_c_binding
    use checks
    use output_functions
    use problem
    use reporting
    use search
    use zktarn_standin
    use zktarn_util
    implicit none

    character(:), allocatable :: sample
    integer :: length, operation, k, previous
    integer, parameter :: operations(8) = [op_qvcreatestructarray800, op_qvcreatestring800, &
        op_qvaddfield800, op_qvcreatedoublescalar800, op_qvcreatedoublematrix800, op_qvgetpr800, &
        op_qvxcallquarn800, op_qvxprintf800]

    call get_command_argument(1, length=length)
    allocate (character(length) :: sample)
    call get_command_argument(1, sample)
    previous = standin_set_console(console_capture)

    ! Refuses the k-th request for memory for k = 1, 2, ... until a run succeeds.
    k = 0
    do
        k = k + 1
        call standin_reset()
        call standin_fail_request(k)
        if (ran_through()) exit
    end do
    call check(k > 20, 'many requests were refused')

    do operation = 1, size(operations)
        do k = 1, 3
            call standin_reset()
            call standin_fail_call(operations(operation), k)
            call check(ran_through(), 'a failed report does not end the search')
        end do
    end do

    call standin_reset()
    call standin_interrupt_at_poll(3)
    call check(.not. ran_through(), 'interrupted')
    call standin_reset()
    previous = standin_set_console(previous)
    call finish()

contains

    !> Reads and solves the sample. Returns whether it was solved; releases everything in any case.
    logical function ran_through()
        type(program_01) :: problem_data
        type(reporter) :: reports
        type(outcome) :: found
        character(:), allocatable :: message
        ran_through = .false.
        reports%has_output_function = 1
        call standin_set_function('tarnCallback', go_on, c_null_ptr)
        call read_program(sample, problem_data, message)
        if (message == '') then
            call begin_reports(reports)
            call solve(problem_data, reports, 1, found)
            call end_reports(reports)
            call free_program(problem_data)
            ran_through = found%status == solved
            if (ran_through) call check(nint(found%best) == 5, 'the optimum')
            if (.not. ran_through) call check(found%status == no_memory .or. &
                found%status == interrupted, 'the reason')
        else
            call check(index(message, 'no memory') > 0, 'the sentence')
        end if
        call standin_remove_function('tarnCallback')
        call check(size(standin_live_blocks()) == 0, 'every block released')
        call check(size(standin_live_objects()) == 0, 'every object released')
    end function
end program
