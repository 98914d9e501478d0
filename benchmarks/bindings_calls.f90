!> The loops of bindings_calls.h in Fortran.
module bindings_calls
    use, intrinsic :: iso_c_binding
    use zktarn_util
    implicit none

contains

    subroutine fortran_add_nz(v, indices, n) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), intent(in) :: indices(*)
        integer(c_int32_t), value :: n
        integer(c_int32_t) :: i
        do i = 1, n
            call vector_add_nz(v, indices(i), 1.5_c_double)
        end do
    end subroutine

    function fortran_get_coef(v, indices, n) bind(c) result(total)
        type(vector), intent(in) :: v
        integer(c_int32_t), intent(in) :: indices(*)
        integer(c_int32_t), value :: n
        real(c_double) :: total
        integer(c_int32_t) :: i
        total = 0
        do i = 1, n
            total = total + vector_get_coef(v, indices(i))
        end do
    end function

    function fortran_is_elm(v, indices, n) bind(c) result(count)
        type(vector), intent(in) :: v
        integer(c_int32_t), intent(in) :: indices(*)
        integer(c_int32_t), value :: n
        integer(c_int64_t) :: count
        integer(c_int32_t) :: i
        count = 0
        do i = 1, n
            count = count + vector_is_elm(v, indices(i))
        end do
    end function

    function fortran_epsilon_is_int(values, n) bind(c) result(count)
        real(c_double), intent(in) :: values(*)
        integer(c_int32_t), value :: n
        integer(c_int64_t) :: count, is_int
        real(c_double) :: nearest
        integer(c_int32_t) :: i
        count = 0
        do i = 1, n
            call epsilon_is_int(values(i), 1e-9_c_double, is_int, nearest)
            count = count + is_int
        end do
    end function

    subroutine fortran_combine(x, y, n) bind(c)
        type(vector), target :: x, y
        integer(c_int32_t), value :: n
        integer(c_int32_t) :: i
        do i = 0, n - 1
            call vectors_combine(x, y, 1.0_c_double, merge(1.0_c_double, -1.0_c_double, &
                mod(i, 2) == 0), 1e-9_c_double)
        end do
    end subroutine

    function exchange(a, b, context) bind(c) result(exchanged)
        integer(c_int32_t), value :: a, b
        type(c_ptr), value :: context
        integer(c_int64_t) :: exchanged
        real(c_double), pointer :: keys(:)
        real(c_double) :: lower
        call c_f_pointer(context, keys, [max(a, b)])
        exchanged = 0
        lower = keys(a)
        if (.not. keys(b) < lower) return
        keys(a) = keys(b)
        keys(b) = lower
        exchanged = 1
    end function

    subroutine fortran_sort(keys, n) bind(c)
        real(c_double), intent(inout) :: keys(*)
        integer(c_int32_t), value :: n
        call sort(1, n, exchange, keys(1))
    end subroutine
end module
