!> A zero-half cut: half the sum of three rows, rounded down, is valid for every integer point with
!> x >= 0, and here it cuts off the solution of the linear relaxation.
program separator
    use, intrinsic :: iso_c_binding, only: dp => c_double
    use, intrinsic :: iso_fortran_env, only: error_unit
    use text, only: short
    use zktarn_util
    implicit none

    integer, parameter :: columns = 5
    real(dp), parameter :: eps = 1e-9_dp
    real(dp), parameter :: coefficients(columns, 3) = reshape([real(dp) :: &
        1, 1, 0, 1, 0, &
        0, 1, 1, 0, -1, &
        1, 0, 1, 2, 0], [columns, 3])
    real(dp), parameter :: rhs(3) = 1
    real(dp), parameter :: solution(columns) = [0.5_dp, 0.5_dp, 0.5_dp, 0.0_dp, 0.0_dp]

    type(vector), pointer :: cut, row
    real(dp) :: cut_rhs, activity, norm, rounded
    integer :: i, j, k

    if (vector_alloc(cut, columns) == 0) call no_memory()
    if (vector_alloc(row, columns) == 0) call no_memory()

    do i = 1, 3
        call vector_clear(row)
        do j = 1, columns
            if (coefficients(j, i) /= 0) call vector_add_nz(row, j, coefficients(j, i))
        end do
        call print_row('row', row, rhs(i))
        call vectors_combine(cut, row, 1.0_dp, 0.5_dp, eps) ! cut := cut + row / 2
    end do
    cut_rhs = sum(rhs) / 2
    call print_row('half sum', cut, cut_rhs)

    ! x >= 0, so smaller coefficients weaken the row; then the left-hand side is an integer.
    activity = 0
    norm = 0
    do k = 1, vector_get_nz(cut)
        j = vector_get_ind(cut, k)
        rounded = epsilon_floor(vector_get_coef(cut, j), eps)
        call vector_set_coef(cut, j, rounded)
        activity = activity + rounded * solution(j)
        norm = norm + rounded**2
    end do
    call vector_rem_zeros(cut)
    cut_rhs = epsilon_floor(cut_rhs, eps)
    call print_row('cut', cut, cut_rhs)
    print '(/3a)', 'At (0.5, 0.5, 0.5, 0, 0) the left-hand side of the cut is ', short(activity), '.'
    print '(3a, f5.3)', 'violation ', short(activity - cut_rhs), ', efficacy ', &
        (activity - cut_rhs) / sqrt(norm)
    call vector_free(row)
    call vector_free(cut)
    if (activity <= cut_rhs + eps) error stop 1

contains

    subroutine print_row(name, v, right_hand_side)
        character(*), intent(in) :: name
        type(vector), intent(in) :: v
        real(dp), intent(in) :: right_hand_side
        character(9) :: label
        real(dp) :: a
        integer :: j
        integer :: position
        label = name
        write (*, '(a)', advance='no') label
        do position = 1, vector_get_nz(v)
            j = vector_get_ind(v, position)
            a = vector_get_coef(v, j)
            write (*, '(1x, a, 1x, 2a, i0)', advance='no') merge('-', '+', a < 0), short(abs(a)), &
                ' x', j
        end do
        print '(2a)', ' <= ', short(right_hand_side)
    end subroutine

    subroutine no_memory()
        write (error_unit, '(a)') 'separator: the host has no memory for a vector'
        error stop 1
    end subroutine
end program
