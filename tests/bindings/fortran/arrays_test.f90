!> Arrays and raw blocks in the host's memory: every type and rank, element by element.
module arrays_cases
    use, intrinsic :: iso_c_binding
    use checks
    use zktarn_standin
    use zktarn_util
    implicit none

contains

    subroutine test_l4()
        type(l4_1d_array) :: a
        integer(c_int32_t), pointer :: p(:)
        call check(.not. associated(elements(a)), 'an absent l4 array has no elements')
        call check(allocmem(a, 7) == 1, 'l4 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'l4 bounds')
        p = 1
        call check(standin_check_blocks() == 0, 'l4 stays inside')
        call freemem(a)
        call check(.not. c_associated(a%data), 'l4 absent again')
        call standin_fail_request(1)
        call check(allocmem(a, 7_c_int64_t) == 0, 'l4 refused')
        call check(.not. associated(elements(a)), 'l4 refused')
        call check(allocmem(a, 0) == 1, 'l4 empty')
        call check(.not. associated(elements(a)), 'l4 empty')
    end subroutine

    subroutine test_i8()
        type(i8_1d_array) :: a
        integer(c_int64_t), pointer :: p(:)
        integer :: k
        call check(allocmem(a, 7) == 1, 'i8 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'i8 bounds')
        p = [(int(k, c_int64_t), k=1, 7)]
        call check(standin_check_blocks() == 0 .and. p(7) == 7, 'i8 stays inside')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 7_c_int64_t) == 0, 'i8 refused')
        call check(.not. associated(elements(a)), 'i8 refused')
        call check(allocmem(a, huge(1_c_int64_t)) == 0, 'i8 too large')
    end subroutine

    subroutine test_i4()
        type(i4_1d_array) :: a
        integer(c_int32_t), pointer :: p(:)
        call check(allocmem(a, 7) == 1, 'i4 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'i4 bounds')
        p = 4
        call check(standin_check_blocks() == 0, 'i4 stays inside')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 7_c_int64_t) == 0, 'i4 refused')
        call check(.not. associated(elements(a)), 'i4 refused')
    end subroutine

    subroutine test_i2()
        type(i2_1d_array) :: a
        integer(c_int16_t), pointer :: p(:)
        call check(allocmem(a, 7) == 1, 'i2 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'i2 bounds')
        p = 2_c_int16_t
        call check(standin_check_blocks() == 0, 'i2 stays inside')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 7_c_int64_t) == 0, 'i2 refused')
        call check(.not. associated(elements(a)), 'i2 refused')
    end subroutine

    subroutine test_i1()
        type(i1_1d_array) :: a
        integer(c_int8_t), pointer :: p(:)
        call check(allocmem(a, 7) == 1, 'i1 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'i1 bounds')
        p = 1_c_int8_t
        call check(standin_check_blocks() == 0, 'i1 stays inside')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 7_c_int64_t) == 0, 'i1 refused')
        call check(.not. associated(elements(a)), 'i1 refused')
    end subroutine

    subroutine test_r8()
        type(r8_1d_array) :: a
        real(c_double), pointer :: p(:)
        call check(allocmem_r8_1d_array(a, 7_c_int64_t) == 1, 'r8 array allocated')
        p => elements(a)
        call check(lbound(p, 1) == 1 .and. ubound(p, 1) == 7, 'r8 bounds')
        p = 0.5_c_double
        call check(standin_check_blocks() == 0, 'r8 stays inside')
        call freemem_r8_1d_array(a)
        call standin_fail_request(1)
        call check(allocmem(a, 7) == 0, 'r8 refused')
        call check(.not. associated(elements(a)), 'r8 refused')
    end subroutine

    !> Elements are stored column by column, as in the C++ record.
    subroutine test_i4_2d()
        type(i4_2d_array) :: a
        integer(c_int32_t), pointer :: p(:, :), flat(:)
        integer :: i, j
        call check(allocmem(a, 3, 4) == 1, 'i4 matrix allocated')
        p => elements(a)
        call check(all(lbound(p) == [1, 1]) .and. all(ubound(p) == [3, 4]), 'i4 matrix bounds')
        do j = 1, 4
            do i = 1, 3
                p(i, j) = 10 * i + j
            end do
        end do
        call c_f_pointer(a%data, flat, [12])
        call check(all(flat(1:4) == [11, 21, 31, 12]) .and. flat(12) == 34, 'i4 columns')
        call check(standin_check_blocks() == 0, 'i4 matrix stays inside')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 3, 4) == 0, 'i4 matrix refused')
        call check(.not. associated(elements(a)), 'i4 matrix refused')
        call check(allocmem(a, 0, 4) == 1, 'i4 matrix empty')
        call check(.not. associated(elements(a)), 'i4 matrix empty')
    end subroutine

    subroutine test_r8_2d()
        type(r8_2d_array) :: a
        real(c_double), pointer :: p(:, :), flat(:)
        call check(allocmem(a, 2_c_int64_t, 3_c_int64_t) == 1, 'r8 matrix allocated')
        p => elements(a)
        p = reshape([1, 2, 3, 4, 5, 6], [2, 3])
        call c_f_pointer(a%data, flat, [6])
        call check(p(2, 1) == 2 .and. p(1, 3) == 5 .and. flat(5) == 5, 'r8 columns')
        call freemem(a)
        call standin_fail_request(1)
        call check(allocmem(a, 3, 4) == 0, 'r8 matrix refused')
        call check(.not. associated(elements(a)), 'r8 matrix refused')
        call check(allocmem(a, huge(1_c_int64_t), 2_c_int64_t) == 0, 'r8 matrix too large')
    end subroutine

    subroutine test_blocks()
        type(c_ptr) :: block
        type(standin_block), allocatable :: live(:)
        block = mallocate(24_c_int64_t)
        live = standin_live_blocks()
        call check(size(live) == 1, 'one live block')
        call check(live(1)%nbytes == 24 .and. c_associated(live(1)%address, block), 'its size')
        call mdeallocate(block)
        call check(.not. c_associated(mallocate(0_c_int64_t)), 'no block of no bytes')
        call standin_fail_request(1)
        call check(.not. c_associated(mallocate(8_c_int64_t)), 'block refused')
    end subroutine
end module

program arrays_test
    use arrays_cases
    implicit none
    call test_l4()
    call test_i8()
    call test_i4()
    call test_i2()
    call test_i1()
    call test_r8()
    call test_i4_2d()
    call test_r8_2d()
    call test_blocks()
    call check(size(standin_live_blocks()) == 0, 'everything given back')
    call finish()
end program
