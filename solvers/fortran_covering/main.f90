!> An output function in the language of the host: stops the solver at a good enough point.
module output_function
    use, intrinsic :: iso_c_binding, only: c_double, c_f_pointer, c_ptr
    use zktarn_standin
    implicit none
    private
    public :: goal, stop_at_goal

    type :: goal
        real(c_double) :: objective = 0
    end type

contains

    subroutine stop_at_goal(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        type(goal), pointer :: wanted
        real(c_double) :: best
        call c_f_pointer(context, wanted)
        best = standin_scalar(standin_field(input, 'best'))
        call standin_reply(reply, merge(1.0_c_double, 0.0_c_double, best <= wanted%objective))
    end subroutine
end module

!> covering FILE [--every NODES] [--quiet] [--stop-at OBJECTIVE]
!>
!> Solves the 0-1 program in a file. Ctrl-C ends the search with the best point so far.
!> Status: 0 solved or infeasible, 1 failed, 2 wrong usage, 3 stopped, 4 interrupted.
program covering
    use, intrinsic :: iso_c_binding, only: c_double, c_loc
    use, intrinsic :: iso_fortran_env, only: error_unit
    use options, only: read_options, run_options
    use output_function, only: goal, stop_at_goal
    use problem, only: free_program, program_01, read_program
    use reporting, only: begin_reports, end_reports, reporter
    use search
    use zktarn_standin, only: standin_remove_function, standin_set_function
    use zktarn_util, only: display_off
    implicit none

    type(run_options) :: chosen
    type(program_01) :: given
    type(reporter) :: bridge
    type(outcome) :: found
    type(goal), target :: wanted
    character(:), allocatable :: message

    call read_options(chosen, message)
    if (message /= '') call fail(2, message)
    call read_program(chosen%path, given, message)
    if (message /= '') call fail(1, message)

    if (chosen%quiet) bridge%display = display_off
    if (chosen%has_goal) then
        wanted%objective = chosen%goal
        bridge%has_output_function = 1
        call standin_set_function('tarnCallback', stop_at_goal, c_loc(wanted))
    end if
    call begin_reports(bridge)
    call solve(given, bridge, chosen%every, found)
    call end_reports(bridge)
    if (chosen%has_goal) call standin_remove_function('tarnCallback')
    call free_program(given)
    call print_outcome()

contains

    subroutine print_outcome()
        integer :: status
        status = 0
        select case (found%status)
        case (solved)
            print '(a)', 'solved'
        case (infeasible)
            print '(a)', 'infeasible'
        case (stopped)
            print '(a)', 'stopped by the output function'
            status = 3
        case (interrupted)
            print '(a)', 'interrupted'
            status = 4
        case (no_memory)
            call fail(1, 'the host has no memory for a vector')
        end select
        if (found%found) then
            print '(a, g0.17)', 'objective ', found%best
            print '(a, *(1x, i0))', 'x', nint(found%x)
        end if
        if (status /= 0) stop status, quiet=.true.
    end subroutine

    subroutine fail(status, reason)
        integer, intent(in) :: status
        character(*), intent(in) :: reason
        write (error_unit, '(2a)') 'covering: ', reason
        stop status, quiet=.true.
    end subroutine
end program
