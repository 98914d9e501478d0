!> Progress of a search through the bridge to the host.
module reporting
    use, intrinsic :: iso_c_binding, only: dp => c_double, c_int64_t
    use zktarn_util
    implicit none
    private
    public :: reporter, begin_reports, end_reports, report, print_line, ends

    !> What the solver keeps of the bridge: its codes, and the record of the solve.
    type :: reporter
        integer :: status = 0
        integer :: ctrlc = poll_for_interrupts
        integer :: display = 2
        integer :: has_output_function = 0
        type(cbdata), pointer :: solve => null()
    end type

contains

    subroutine begin_reports(to)
        type(reporter), intent(inout) :: to
        to%status = 0
        call cbinit(to%solve)
    end subroutine

    subroutine end_reports(to)
        type(reporter), intent(inout) :: to
        call cbfree(to%solve)
    end subroutine

    subroutine print_line(to, line)
        type(reporter), intent(in) :: to
        character(*), intent(in) :: line
        call cbprintdisplay(to%status, to%ctrlc, to%display, line)
    end subroutine

    !> Whether the search is to end: after an interrupt, or a stop by the output function.
    logical function ends(to)
        type(reporter), intent(in) :: to
        ends = cbhasinterrupt(to%status, to%ctrlc) /= 0
    end function

    !> Calls the output function, when there is one. Its answer becomes the status.
    subroutine report(to, phase, nodes, best, solution)
        type(reporter), intent(inout) :: to
        character(*), intent(in) :: phase
        integer, intent(in) :: nodes
        real(dp), intent(in) :: best
        real(dp), intent(in), contiguous :: solution(:)
        integer(c_int64_t) :: structure
        integer(flag_kind) :: stop
        if (cbhasoutputfcn(to%has_output_function) == 0) return
        structure = qvinitcbarray(phase)
        ! Without memory for the report the search goes on.
        if (structure == 0) return
        call addrealscalartoqvstruct(structure, 'nodes', real(nodes, dp))
        call addrealscalartoqvstruct(structure, 'best', best)
        call addrealvectoqvstruct(structure, 'solution', solution)
        call qvcalloutputfcn(structure, stop, to%status, to%ctrlc)
        if (stop /= 0) to%status = stopped_by_output_function
        call qvfreecbarray(structure)
    end subroutine
end module
