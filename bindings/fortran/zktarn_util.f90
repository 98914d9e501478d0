!> The library in Fortran: every procedure of zktarn_util.
!>
!> The C++ headers hold the contract of each procedure: ranges, results in every case, cost. Here a
!> comment gives what differs. The rules below hold for all of them.
!>
!>  - A procedure has the name that it has in C++, without a leading underscore. Procedures that
!>    differ in type and rank alone also share a generic name: allocmem, freemem,
!>    xcopy, xzero, xgcd.
!>  - A flag is an integer of kind flag_kind: written as 1 or 0, read as true when it is not 0.
!>  - An absent optional input flag counts as 0; an absent optional output is not written.
!>  - A text is a character(*): the whole length counts, trailing blanks included.
!>  - `elements` gives an array in the host's memory as a Fortran pointer with lower bounds of 1.
!>  - A callback is a module procedure with the attribute bind(c). Its context is the address of the
!>    variable that was passed with it: c_f_pointer makes it a pointer to that variable. Never pass
!>    an internal procedure: compilers build code for it on the stack, and the linker then marks the
!>    stack of the whole program executable.
module zktarn_util
    use zktarn_types
    use zktarn_callbacks
    use zktarn_memory
    use zktarn_numbers
    use zktarn_random
    use zktarn_vectors
    implicit none
    public
end module
