!> Vectors: every procedure, each optional argument present and absent, each failure.
module vectors_cases
    use, intrinsic :: iso_c_binding
    use checks
    use zktarn_standin
    use zktarn_util
    implicit none

contains

    !> Each of the three flags 0 and 1; absent below.
    subroutine test_alloc()
        type(vector), pointer :: v
        integer(flag_kind) :: no_coef, no_ind, no_elm
        do no_coef = 0, 1
            do no_ind = 0, 1
                do no_elm = 0, 1
                    call check(vector_alloc(v, 4, no_coef, no_ind, no_elm) == 1, 'allocated')
                    call check(associated(elements(v%coef)) .neqv. no_coef == 1, 'coef')
                    call check(associated(elements(v%ind)) .neqv. no_ind == 1, 'ind')
                    call check(associated(elements(v%elm)) .neqv. no_elm == 1, 'elm')
                    call check(vector_get_nz(v) == 0, 'empty')
                    call vector_free(v)
                    call check(.not. associated(v), 'disassociated after vector_free')
                end do
            end do
        end do
        call vector_free(v)
        call check(vector_alloc(v, 3) == 1, 'no flag at all')
        call check(all(elements(v%elm) == 0) .and. size(elements(v%coef)) == 3, 'all arrays')
        call vector_free(v)
        call check(vector_alloc(v, 3, no_ind=flag_true) == 1, 'the second flag alone')
        call check(associated(elements(v%coef)) .and. associated(elements(v%elm)), 'not ind')
        call check(.not. associated(elements(v%ind)), 'ind')
        call vector_free(v)
        call check(vector_alloc(v, 3, no_elm=flag_true) == 1, 'the third flag alone')
        call check(.not. associated(elements(v%elm)), 'elm')
        call vector_free(v)
    end subroutine

    subroutine test_alloc_failures()
        type(vector), pointer :: v
        integer :: k
        do k = 1, 3
            call standin_fail_request(k)
            call check(vector_alloc(v, 4) == 0, 'refused')
            call check(.not. associated(v), 'disassociated where there is no memory')
            call check(size(standin_live_blocks()) == 0, 'nothing left behind')
        end do
    end subroutine

    subroutine test_components()
        type(vector), pointer :: v
        call check(vector_alloc(v, 5) == 1, 'allocated')
        call vector_set_elm(v, 3)
        call check(vector_is_elm(v, 3) == 1 .and. vector_is_elm(v, 2) == 0, 'marks')
        call vector_set_ind(v, 1, 3)
        call check(vector_get_ind(v, 1) == 3, 'list')
        call vector_set_nz(v, 1)
        call check(vector_get_nz(v) == 1, 'count')
        call vector_set_coef(v, 3, 2.5_c_double)
        call check(vector_get_coef(v, 3) == 2.5_c_double, 'coefficient')
        call vector_rem_elm(v, 3)
        call check(vector_is_elm(v, 3) == 0 .and. vector_get_coef(v, 3) == 0, 'unmarked')
        call vector_free(v)
    end subroutine

    subroutine test_entries()
        type(vector), pointer :: v
        integer(c_int32_t), pointer :: listed(:)
        call check(vector_alloc(v, 5) == 1, 'allocated')
        call vector_add_nz(v, 2, 1.5_c_double)
        call vector_add_nz(v, 5, 0.0_c_double)
        call vector_set_coef(v, 4, -3.0_c_double)
        call vector_add_nz(v, 4)
        call check(vector_get_nz(v) == 3 .and. vector_get_coef(v, 4) == -3, 'value absent')
        call vector_rem_nz(v, 1)
        listed => elements(v%ind)
        call check(all(listed(1:2) == [4, 5]), 'the last takes its place')
        call vector_rem_zeros(v)
        call check(vector_get_nz(v) == 1, 'zero dropped')
        call vector_clean_index(v)
        call check(vector_get_nz(v) == 1 .and. vector_is_elm(v, 4) == 0, 'marks cleaned')
        call vector_set_elm(v, 4)
        call vector_clear(v)
        call check(vector_get_nz(v) == 0 .and. vector_is_elm(v, 4) == 0, 'cleared')
        call vector_free(v)
    end subroutine

    subroutine test_whole_vectors()
        type(vector), pointer :: x, y
        call check(vector_alloc(x, 6) == 1 .and. vector_alloc(y, 6, no_elm=flag_true) == 1, 'both')
        call vector_add_nz(x, 1, 3.0_c_double)
        call vector_add_nz(x, 2, 1.0_c_double)
        call vector_add_nz(y, 2, 0.5_c_double)
        call vector_add_nz(y, 6, 4.0_c_double)
        call vectors_combine(x, y, 1.0_c_double, -2.0_c_double, 1e-9_c_double)
        call check(vector_get_nz(x) == 2 .and. vector_get_coef(x, 6) == -8, 'combined')
        call check(vectors_are_identical(x, x, 0.0_c_double) == 1, 'identical')
        call check(vectors_are_identical(y, x, 0.0_c_double) == 0, 'not identical')
        call vectors_combine(x, x, 1.0_c_double, 1.0_c_double, 1e-9_c_double)
        call check(vector_get_coef(x, 6) == -16 .and. vector_get_coef(x, 1) == 6, 'with itself')
        call vector_set_coef(x, 1, 3.0_c_double)
        call vector_mod2(x, 1e-9_c_double)
        call check(vector_get_nz(x) == 1 .and. vector_get_coef(x, 1) == 1, 'modulo 2')
        call vectors_calc_sym_diff(x, y)
        call check(vector_get_nz(x) == 3, 'symmetric difference')
        call vectors_calc_sym_diff(x, x)
        call check(vector_get_nz(x) == 0, 'with itself: empty')
        call vector_free(x)
        call vector_free(y)
    end subroutine

    subroutine test_initialise()
        type(vector) :: records(3), none(0)
        records%nz = 7
        call vectorinitialise(records(:2))
        call check(all(records%nz == [0, 0, 7]), 'the first two')
        call vectorinitialise(records(3))
        call check(records(3)%nz == 0, 'the third')
        call vectorinitialise(none)
    end subroutine
end module

program vectors_test
    use vectors_cases
    implicit none
    call test_alloc()
    call test_alloc_failures()
    call test_components()
    call test_entries()
    call test_whole_vectors()
    call test_initialise()
    call check(size(standin_live_blocks()) == 0, 'everything given back')
    call finish()
end program
