!> Random numbers from generators that the host keeps.
module zktarn_random
    use, intrinsic :: iso_c_binding
    use zktarn_types
    implicit none
    private

    interface
        function instantiaterng(rng, seed) bind(c, name="zktarn_instantiaterng")
            import :: c_int32_t, c_int64_t, rng_state
            type(rng_state), intent(inout) :: rng
            integer(c_int32_t), value :: seed
            integer(c_int64_t) :: instantiaterng
        end function

        subroutine deleterng(rng) bind(c, name="zktarn_deleterng")
            import :: rng_state
            type(rng_state), intent(inout) :: rng
        end subroutine

        function rand_number(rng) bind(c, name="zktarn_rand_number")
            import :: c_double, rng_state
            type(rng_state), intent(in) :: rng
            real(c_double) :: rand_number
        end function

        function getrngstate(rng, state) bind(c, name="zktarn_getrngstate")
            import :: c_int64_t, c_ptr, rng_state
            type(rng_state), intent(in) :: rng
            type(c_ptr), intent(out) :: state
            integer(c_int64_t) :: getrngstate
        end function

        subroutine setrngstate(rng, state) bind(c, name="zktarn_setrngstate")
            import :: c_ptr, rng_state
            type(rng_state), intent(in) :: rng
            type(c_ptr), value :: state
        end subroutine

        subroutine deleterngstate(state) bind(c, name="zktarn_deleterngstate")
            import :: c_ptr
            type(c_ptr), value :: state
        end subroutine
    end interface
    public :: instantiaterng, deleterng, rand_number, getrngstate, setrngstate, deleterngstate

    interface rng_stateinitialise
        module procedure rng_stateinitialise_one, rng_stateinitialise_many
    end interface
    public :: rng_stateinitialise

    ! Called by the module procedures

    interface
        subroutine c_rng_stateinitialise(first, count) bind(c, name="zktarn_rng_stateinitialise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine
    end interface

contains

    subroutine rng_stateinitialise_one(record)
        type(rng_state), intent(inout), target :: record
        call c_rng_stateinitialise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine rng_stateinitialise_many(records)
        type(rng_state), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_rng_stateinitialise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine
end module
