!> Integrality, fractions, divisors, the scalar search, sorting, plain arrays, generators.
module numbers_cases
    use, intrinsic :: iso_c_binding
    use, intrinsic :: ieee_arithmetic, only: ieee_quiet_nan, ieee_value
    use checks
    use zktarn_standin
    use zktarn_util
    implicit none

    integer, parameter :: dp = c_double

    type :: keyed
        integer, allocatable :: keys(:)
        character(1), allocatable :: letters(:)
    end type

    type :: supplied
        real(dp) :: values(3)
        integer :: calls = 0
    end type

contains

    subroutine test_integrality()
        integer(flag_kind) :: is_int
        real(dp) :: nearest
        nearest = -7
        call epsilon_is_int(2.9999999999_dp, 1e-6_dp, is_int, nearest)
        call check(is_int == 1 .and. nearest == 3, 'integral')
        nearest = -7
        call epsilon_is_int(2.5_dp, 1e-6_dp, is_int, nearest)
        call check(is_int == 0 .and. nearest == -7, 'nearest is left as it is')
        call epsilon_is_int(3.0_dp, 1e-6_dp, is_int)
        call check(is_int == 1, 'nearest absent')
        call epsilon_is_int_scalar(0.5_dp, 4.0_dp, 1e-6_dp, is_int, nearest)
        call check(is_int == 1 .and. nearest == 2, 'integral product')
        call epsilon_is_int_scalar(0.5_dp, 3.0_dp, 1e-6_dp, is_int)
        call check(is_int == 0, 'fractional product')
        call check(fractional(2.75_dp) == 0.25_dp, 'fractional')
        call check(epsilon_fractionality(2.25_dp, 1e-6_dp) == 0.25_dp, 'fractionality')
        call check(epsilon_floor(2.9999999999_dp, 1e-6_dp) == 3, 'floor')
        call check(epsilon_ceiling(2.0000000001_dp, 1e-6_dp) == 2, 'ceiling')
        call check(is_even_real(4.0_dp, 1e-6_dp) == 1, 'even real')
        call check(is_even_int(4) == 1 .and. is_even_int(-3) == 0, 'even integer')
    end subroutine

    subroutine test_fractions()
        integer(flag_kind) :: found
        real(dp) :: num, den
        call get_rational_rep(0.25_dp, 1e-9_dp, 1000.0_dp, found, num, den)
        call check(found == 1 .and. num == 25 .and. den == 100, 'fraction')
        call get_rational_rep(ieee_value(1.0_dp, ieee_quiet_nan), 1e-9_dp, 1000.0_dp, found, num, &
            den)
        call check(found == 0 .and. num == 0 .and. den == 0, 'no fraction')
        call check(xgcd(12.0_dp, 18.0_dp, 1e-9_dp) == 6 .and. xgcd_i4(12, -18) == 6, 'divisors')
        call check(xgcd_r8(1.0_dp, 2.0_dp, -1.0_dp) == 0, 'refused real divisor')
        call check(xgcd(-huge(1) - 1, 2) == 0, 'refused integer divisor')
    end subroutine

    subroutine supply(index, value, marked, selected, context) bind(c)
        integer(c_int32_t), value :: index
        real(c_double), intent(out) :: value
        integer(c_int64_t), intent(out) :: marked, selected
        type(c_ptr), value :: context
        type(supplied), pointer :: set
        call c_f_pointer(context, set)
        set%calls = set%calls + 1
        value = set%values(index)
        marked = merge(1, 0, index == 3)
        selected = merge(0, 1, index == 2)
    end subroutine

    subroutine supply_halves(index, value, marked, selected, context) bind(c)
        integer(c_int32_t), value :: index
        real(c_double), intent(out) :: value
        integer(c_int64_t), intent(out) :: marked, selected
        type(c_ptr), value :: context
        call check(.not. c_associated(context), 'an absent context is a null address')
        value = index / 2.0_dp
        marked = 0
        selected = 1
    end subroutine

    !> The second and the third element have no scalar, so the search must exclude both.
    subroutine test_scalar_search()
        type(supplied) :: set
        integer(flag_kind) :: found, skip, selected
        real(dp) :: scalar
        set%values = [0.5_dp, sqrt(0.5_dp), sqrt(1 / 3.0_dp)]
        do skip = 0, 1
            do selected = 0, 1
                call find_scalar_integral(3, supply, set, 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar, &
                    skip, selected)
                call check(found == skip * selected .and. scalar == 2 * found, 'supplied')
            end do
        end do
        call check(set%calls > 0, 'the context is the variable itself')
        call find_scalar_integral(3, supply, set, 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar)
        call check(found == 0, 'no flag')
        call find_scalar_integral(3, supply, set, 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar, &
            selected_only=flag_true)
        call check(found == 0, 'the second flag alone')
        call find_scalar_integral(5, supply_halves, eps=1e-9_dp, max_den=1e3_dp, &
            max_scalar=1e3_dp, found=found, scalar=scalar)
        call check(found == 1 .and. scalar == 2, 'no context')
    end subroutine

    subroutine test_scalar_search_over_array()
        integer(flag_kind) :: found
        real(dp) :: scalar, strided(6)
        call find_scalar_integral([0.5_dp, 1 / 3.0_dp], 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar)
        call check(found == 1 .and. scalar == 6, 'plain array')
        call find_scalar_integral([0.5_dp, sqrt(0.5_dp)], 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar, &
            marked=[flag_false, flag_true])
        call check(found == 1 .and. scalar == 2, 'marked ones left out')
        call find_scalar_integral([0.5_dp, sqrt(0.5_dp)], 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar, &
            selected=[flag_true, flag_false])
        call check(found == 1 .and. scalar == 2, 'selected ones alone')
        strided = [0.25_dp, sqrt(0.5_dp), 0.5_dp, sqrt(0.5_dp), 0.75_dp, sqrt(0.5_dp)]
        call find_scalar_integral(strided(1::2), 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar)
        call check(found == 1 .and. scalar == 4, 'every other element')
        call find_scalar_integral(strided(:0), 1e-9_dp, 1e3_dp, 1e3_dp, found, scalar)
        call check(found == 1, 'no elements')
    end subroutine

    function by_key(a, b, context) bind(c) result(exchanged)
        integer(c_int32_t), value :: a, b
        type(c_ptr), value :: context
        integer(c_int64_t) :: exchanged
        type(keyed), pointer :: list
        call c_f_pointer(context, list)
        exchanged = 0
        if (list%keys(a) <= list%keys(b)) return
        list%keys([a, b]) = list%keys([b, a])
        list%letters([a, b]) = list%letters([b, a])
        exchanged = 1
    end function

    subroutine test_sort()
        type(keyed) :: list
        integer :: i
        list%keys = [(mod(7919 * i, 26), i=1, 26)]
        list%letters = [(achar(iachar('a') + list%keys(i)), i=1, 26)]
        call sort(1, 26, by_key, list)
        call check(all(list%keys == [(i, i=0, 25)]), 'sorted')
        call check(list%letters(1) == 'a' .and. list%letters(26) == 'z', 'what belongs to the keys')
        call sort(3, 3, by_key, list)
    end subroutine

    subroutine test_plain_arrays()
        integer(c_int8_t) :: bytes(3)
        integer(c_int32_t) :: integers(3)
        real(dp) :: reals(3)
        bytes = 0
        integers = 0
        reals = 0
        call xcopy([1_c_int8_t, 2_c_int8_t, 3_c_int8_t], bytes, 2)
        call xcopy([1, 2, 3], integers, 2)
        call xcopy([1.0_dp, 2.0_dp, 3.0_dp], reals, 2)
        call check(all(bytes == [1, 2, 0]) .and. all(integers == [1, 2, 0]), 'integers copied')
        call check(all(reals == [1, 2, 0]), 'reals copied')
        call xzero(integers, 1)
        call xzero(reals, 1)
        call check(all(integers == [0, 2, 0]) .and. all(reals == [0, 2, 0]), 'cleared')
    end subroutine

    subroutine test_generators()
        type(rng_state) :: rng, records(2)
        type(c_ptr), target :: state
        real(dp) :: second
        call check(rand_number(rng) == huge(1.0_dp), 'no generator')
        call standin_fail_call(op_instantiateRngOptim, 1)
        call check(instantiaterng(rng, 1) == 0, 'refused')
        call check(.not. c_associated(rng%generator), 'no generator')
        call check(instantiaterng(rng, 42) == 1, 'made')
        call standin_fail_call(op_getRngStateOptim, 1)
        call check(getrngstate(rng, state) == 0, 'refused snapshot')
        call check(.not. c_associated(state), 'no snapshot')
        call check(getrngstate(rng, state) == 1, 'snapshot')
        second = rand_number(rng)
        call setrngstate(rng, state)
        call check(rand_number(rng) == second, 'restored')
        call deleterngstate(state)
        call deleterngstate(c_null_ptr)
        call deleterng(rng)
        call check(.not. c_associated(rng%generator), 'deleted')
        records%generator = c_loc(state)
        call rng_stateinitialise(records)
        call check(.not. c_associated(records(2)%generator), 'initialised')
        call check(size(standin_live_objects()) == 0, 'everything given back')
    end subroutine
end module

program numbers_test
    use numbers_cases
    implicit none
    call test_integrality()
    call test_fractions()
    call test_scalar_search()
    call test_scalar_search_over_array()
    call test_sort()
    call test_plain_arrays()
    call test_generators()
    call finish()
end program
