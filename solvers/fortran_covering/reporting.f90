!> Progress of a search through the bridge to the host.
module reporting
    use, intrinsic :: iso_c_binding, only: dp => c_double, c_int64_t
    use zktarn_util
    implicit none
    private
    public :: reporter, begin_reports, end_reports, report, print_line, ends

    !> The solver's data for the bridge: its codes, and the record of the solve.
    type :: reporter
        integer :: status = 0
        integer :: ctrlc = poll_for_interrupts
        integer :: display = 2
        integer :: has_output_function = 0
        type(cbdata), pointer :: solve => null()
    end type

contains

    subroutine begin_reports(bridge)
        type(reporter), intent(inout) :: bridge
        bridge%status = 0
        call cbinit(bridge%solve)
    end subroutine

    subroutine end_reports(bridge)
        type(reporter), intent(inout) :: bridge
        call cbfree(bridge%solve)
    end subroutine

    subroutine print_line(bridge, line)
        type(reporter), intent(in) :: bridge
        character(*), intent(in) :: line
        call cbprintdisplay(bridge%status, bridge%ctrlc, bridge%display, line)
    end subroutine

    !> Whether the search must end: after an interrupt, or after a stop by the output function.
    logical function ends(bridge)
        type(reporter), intent(in) :: bridge
        ends = cbhasinterrupt(bridge%status, bridge%ctrlc) /= 0
    end function

    !> Calls the output function, if there is one. Its result becomes the status.
    subroutine report(bridge, phase, nodes, best, solution)
        type(reporter), intent(inout) :: bridge
        character(*), intent(in) :: phase
        integer, intent(in) :: nodes
        real(dp), intent(in) :: best
        real(dp), intent(in), contiguous :: solution(:)
        integer(c_int64_t) :: structure
        integer(flag_kind) :: stop
        if (cbhasoutputfcn(bridge%has_output_function) == 0) return
        structure = qvinitcbarray(phase)
        ! If memory for the report is missing, the search continues.
        if (structure == 0) return
        call addrealscalartoqvstruct(structure, 'nodes', real(nodes, dp))
        call addrealscalartoqvstruct(structure, 'best', best)
        call addrealvectoqvstruct(structure, 'solution', solution)
        call qvcalloutputfcn(structure, stop, bridge%status, bridge%ctrlc)
        if (stop /= 0) bridge%status = stopped_by_output_function
        call qvfreecbarray(structure)
    end subroutine
end module
