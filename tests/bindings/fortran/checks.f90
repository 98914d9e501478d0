!> Counts failed checks and names each. `finish` ends the program with a nonzero status if any failed.
module checks
    use, intrinsic :: iso_fortran_env, only: error_unit
    implicit none
    private
    public :: check, finish
    integer :: failed = 0

contains

    subroutine check(holds, what)
        logical, intent(in) :: holds
        character(*), intent(in) :: what
        if (holds) return
        failed = failed + 1
        write (error_unit, '(2a)') 'not true: ', what
    end subroutine

    subroutine finish()
        if (failed > 0) error stop 1
    end subroutine
end module
