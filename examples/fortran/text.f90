!> Numbers as text, as short as they can be.
module text
    use, intrinsic :: iso_c_binding, only: c_double
    implicit none
    private
    public :: short

contains

    !> A number of few digits: 3 as 3, 0.5 as 0.5.
    pure function short(number) result(characters)
        real(c_double), intent(in) :: number
        character(:), allocatable :: characters
        character(32) :: digits
        integer :: last
        write (digits, '(f0.6)') abs(number)
        last = verify(trim(digits), '0', back=.true.)
        if (digits(last:last) == '.') last = last - 1
        characters = digits(:last)
        if (len(characters) == 0) characters = '0'
        if (characters(1:1) == '.') characters = '0'//characters
        if (number < 0) characters = '-'//characters
    end function
end module
