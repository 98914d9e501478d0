!> Control of the records that the library makes: vectors, the record of a solve, copied values.
!>
!> Records come from the C++ runtime, not from the host. A program that uses this module links
!> zktarn::fortran_standin_records, which replaces `operator new` of the whole program. The C++ header
!> zktarn_standin/records.hpp holds the contract of each procedure.
module zktarn_standin_records
    use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t
    implicit none
    private

    interface
        function standin_record_requests() bind(c, name="zktarn_standin_record_requests")
            import :: c_int64_t
            integer(c_int64_t) :: standin_record_requests
        end function

        function standin_live_records() bind(c, name="zktarn_standin_live_records")
            import :: c_int64_t
            integer(c_int64_t) :: standin_live_records
        end function

        subroutine c_fail_record(k) bind(c, name="zktarn_standin_fail_record")
            import :: c_int64_t
            integer(c_int64_t), value :: k
        end subroutine
    end interface
    public :: standin_record_requests, standin_live_records

    !> Makes the k-th request for a record from now fail, once; k is an integer of 32 or of 64 bits.
    interface standin_fail_record
        module procedure fail_record_short, fail_record_long
    end interface
    public :: standin_fail_record

contains

    subroutine fail_record_short(k)
        integer(c_int32_t), intent(in) :: k
        call c_fail_record(int(k, c_int64_t))
    end subroutine

    subroutine fail_record_long(k)
        integer(c_int64_t), intent(in) :: k
        call c_fail_record(k)
    end subroutine
end module
