!> Sparse vectors.
module zktarn_vectors
    use, intrinsic :: iso_c_binding
    use zktarn_types
    implicit none
    private

    ! vector_type

    public :: vector_alloc, vector_free

    interface vectorinitialise
        module procedure vectorinitialise_one, vectorinitialise_many
    end interface
    public :: vectorinitialise

    ! vector_mod

    interface
        function vector_get_nz(v) bind(c, name="zktarn_vector_get_nz")
            import :: c_int32_t, vector
            type(vector), intent(in) :: v
            integer(c_int32_t) :: vector_get_nz
        end function

        subroutine vector_set_nz(v, n) bind(c, name="zktarn_vector_set_nz")
            import :: c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: n
        end subroutine

        function vector_get_ind(v, k) bind(c, name="zktarn_vector_get_ind")
            import :: c_int32_t, vector
            type(vector), intent(in) :: v
            integer(c_int32_t), value :: k
            integer(c_int32_t) :: vector_get_ind
        end function

        subroutine vector_set_ind(v, k, j) bind(c, name="zktarn_vector_set_ind")
            import :: c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: k, j
        end subroutine

        subroutine vector_set_coef(v, j, value) bind(c, name="zktarn_vector_set_coef")
            import :: c_double, c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: j
            real(c_double), value :: value
        end subroutine

        function vector_get_coef(v, j) bind(c, name="zktarn_vector_get_coef")
            import :: c_double, c_int32_t, vector
            type(vector), intent(in) :: v
            integer(c_int32_t), value :: j
            real(c_double) :: vector_get_coef
        end function

        function vector_is_elm(v, j) bind(c, name="zktarn_vector_is_elm")
            import :: c_int32_t, c_int64_t, vector
            type(vector), intent(in) :: v
            integer(c_int32_t), value :: j
            integer(c_int64_t) :: vector_is_elm
        end function

        subroutine vector_set_elm(v, j) bind(c, name="zktarn_vector_set_elm")
            import :: c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: j
        end subroutine

        subroutine vector_rem_elm(v, j) bind(c, name="zktarn_vector_rem_elm")
            import :: c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: j
        end subroutine

        subroutine vector_add_nz(v, j, value) bind(c, name="zktarn_vector_add_nz")
            import :: c_double, c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: j
            real(c_double), intent(in), optional :: value
        end subroutine

        subroutine vector_rem_nz(v, k) bind(c, name="zktarn_vector_rem_nz")
            import :: c_int32_t, vector
            type(vector), intent(inout) :: v
            integer(c_int32_t), value :: k
        end subroutine

        subroutine vector_clear(v) bind(c, name="zktarn_vector_clear")
            import :: vector
            type(vector), intent(inout) :: v
        end subroutine

        subroutine vector_clean_index(v) bind(c, name="zktarn_vector_clean_index")
            import :: vector
            type(vector), intent(inout) :: v
        end subroutine

        subroutine vector_rem_zeros(v) bind(c, name="zktarn_vector_rem_zeros")
            import :: vector
            type(vector), intent(inout) :: v
        end subroutine

        !> y may be x itself.
        subroutine vectors_combine(x, y, alpha, beta, tol) bind(c, name="zktarn_vectors_combine")
            import :: c_double, vector
            type(vector), target :: x
            type(vector), target :: y
            real(c_double), value :: alpha, beta, tol
        end subroutine

        !> y may be x itself.
        subroutine vectors_calc_sym_diff(x, y) bind(c, name="zktarn_vectors_calc_sym_diff")
            import :: vector
            type(vector), target :: x
            type(vector), target :: y
        end subroutine

        subroutine vector_mod2(v, tol) bind(c, name="zktarn_vector_mod2")
            import :: c_double, vector
            type(vector), intent(inout) :: v
            real(c_double), value :: tol
        end subroutine

        function vectors_are_identical(a, b, tol) bind(c, name="zktarn_vectors_are_identical")
            import :: c_double, c_int64_t, vector
            type(vector), intent(in) :: a, b
            real(c_double), value :: tol
            integer(c_int64_t) :: vectors_are_identical
        end function
    end interface
    public :: vector_get_nz, vector_set_nz, vector_get_ind, vector_set_ind, vector_set_coef
    public :: vector_get_coef, vector_is_elm, vector_set_elm, vector_rem_elm, vector_add_nz
    public :: vector_rem_nz, vector_clear, vector_clean_index, vector_rem_zeros, vectors_combine
    public :: vectors_calc_sym_diff, vector_mod2, vectors_are_identical

    ! Called by the module procedures

    interface
        subroutine c_vectorinitialise(first, count) bind(c, name="zktarn_vectorinitialise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        function c_vector_alloc(vec, n, no_coef, no_ind, no_elm) &
            bind(c, name="zktarn_vector_alloc")
            import :: c_int32_t, c_int64_t, c_ptr
            type(c_ptr), intent(out) :: vec
            integer(c_int32_t), value :: n
            integer(c_int64_t), intent(in), optional :: no_coef, no_ind, no_elm
            integer(c_int64_t) :: c_vector_alloc
        end function

        subroutine c_vector_free(vec) bind(c, name="zktarn_vector_free")
            import :: c_ptr
            type(c_ptr), intent(inout) :: vec
        end subroutine
    end interface

contains

    subroutine vectorinitialise_one(record)
        type(vector), intent(inout), target :: record
        call c_vectorinitialise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine vectorinitialise_many(records)
        type(vector), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_vectorinitialise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    !> Returns 0, with `vec` disassociated, if memory is missing.
    function vector_alloc(vec, n, no_coef, no_ind, no_elm) result(made)
        type(vector), pointer, intent(out) :: vec
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind), intent(in), optional :: no_coef, no_ind, no_elm
        integer(flag_kind) :: made
        type(c_ptr) :: address
        made = c_vector_alloc(address, n, no_coef, no_ind, no_elm)
        vec => null()
        if (made /= 0) call c_f_pointer(address, vec)
    end function

    !> `vec` may be disassociated, and always is afterwards.
    subroutine vector_free(vec)
        type(vector), pointer, intent(inout) :: vec
        type(c_ptr) :: address
        if (.not. associated(vec)) return
        address = c_loc(vec)
        call c_vector_free(address)
        vec => null()
    end subroutine
end module
