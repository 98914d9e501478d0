!> Implicit enumeration of a 0-1 program.
!>
!> Source: Balas, An additive algorithm for solving linear programs with zero-one variables (1965);
!> the surrogate constraint follows Geoffrion, An improved implicit enumeration approach for integer
!> programming (1969).
module search
    use, intrinsic :: iso_c_binding, only: dp => c_double, c_f_pointer, c_int32_t, c_int64_t, c_ptr
    use problem, only: constraint, free_program, program_01
    use reporting, only: ends, print_line, report, reporter
    use zktarn_util
    implicit none
    private
    public :: outcome, solve, solved, infeasible, stopped, interrupted, no_memory

    integer, parameter :: solved = 0, infeasible = 1, stopped = 2, interrupted = 3, no_memory = 4
    integer, parameter :: free = -1
    real(dp), parameter :: eps = 1e-9_dp, feasibility = 1e-6_dp

    !> How a search ended; `best` and `x` are those of the best point, when one was found.
    type :: outcome
        integer :: status = infeasible
        integer :: nodes = 0
        logical :: found = .false.
        real(dp) :: best = huge(1.0_dp)
        real(dp), allocatable :: x(:)
    end type

    !> A row with its entries in the order of their cost per unit.
    type :: ordered_row
        integer, allocatable :: indices(:)
        real(dp), allocatable :: coefficients(:)
        real(dp), allocatable :: ratios(:)
        real(dp) :: rhs = 0
    end type

    !> State of the search. All costs are nonnegative: a variable with a negative cost is
    !> complemented.
    type :: state
        integer :: n = 0
        real(dp), allocatable :: costs(:)
        logical, allocatable :: complemented(:)
        real(dp) :: constant = 0
        !> Every objective value is a multiple of 1 / scale; 0 when no scale is known.
        real(dp) :: scale = 0
        type(ordered_row), allocatable :: rows(:)
        !> 0, 1 or free for each variable; the fixed variables, in the order of fixing.
        integer, allocatable :: x(:)
        integer, allocatable :: trail(:)
        integer :: fixed = 0
    end type

    integer, parameter :: largest_scale = 1000000

contains

    !> Finds a best point of `given`. Reports progress after every `every` nodes and at each better
    !> point.
    subroutine solve(given, bridge, every, found)
        type(program_01), intent(in) :: given
        type(reporter), intent(inout) :: bridge
        integer, intent(in) :: every
        type(outcome), intent(out) :: found
        type(state) :: current
        allocate (found%x(given%n))
        found%x = 0
        if (.not. prepared(given, current)) then
            found%status = no_memory
            return
        end if
        call enumerate(current, bridge, every, found)
        if (cbstopfromoutputfcn(bridge%status) /= 0) then
            found%status = stopped
        else if (ends(bridge)) then
            found%status = interrupted
        else if (found%found) then
            found%status = solved
        end if
    end subroutine

    ! Preparation

    !> Complements variables, scales costs, orders rows. False if memory for the surrogate
    !> constraint is missing.
    logical function prepared(given, made)
        type(program_01), intent(in) :: given
        type(state), intent(out) :: made
        type(vector), pointer :: surrogate
        real(dp) :: rhs, scalar
        integer(flag_kind) :: found
        integer :: i
        prepared = .false.
        made%n = given%n
        made%complemented = given%costs < 0
        made%costs = abs(given%costs)
        made%constant = sum(given%costs, mask=made%complemented)
        call find_scalar_integral(made%costs, eps, real(largest_scale, dp), &
            real(largest_scale, dp), found, scalar)
        if (found /= 0) made%scale = scalar
        allocate (made%x(given%n), made%trail(given%n))
        made%x = free

        if (vector_alloc(surrogate, given%n) == 0) return
        rhs = 0
        do i = 1, size(given%constraints)
            call vectors_combine(surrogate, given%constraints(i)%row, 1.0_dp, 1.0_dp, eps)
            rhs = rhs + given%constraints(i)%rhs
        end do
        allocate (made%rows(size(given%constraints) + 1))
        do i = 1, size(given%constraints)
            made%rows(i) = ordered(given%constraints(i)%row, given%constraints(i)%rhs, made)
        end do
        made%rows(size(made%rows)) = ordered(surrogate, rhs, made)
        call vector_free(surrogate)
        prepared = .true.
    end function

    function ordered(row, rhs, current) result(made)
        type(vector), intent(in) :: row
        real(dp), intent(in) :: rhs
        type(state), intent(in) :: current
        type(ordered_row) :: made
        integer :: j, k
        real(dp) :: a
        made%rhs = rhs
        allocate (made%indices(vector_get_nz(row)))
        allocate (made%coefficients(size(made%indices)), made%ratios(size(made%indices)))
        do k = 1, size(made%indices)
            j = vector_get_ind(row, k)
            a = vector_get_coef(row, j)
            if (current%complemented(j)) then
                made%rhs = made%rhs - a
                a = -a
            end if
            made%indices(k) = j
            made%coefficients(k) = a
            made%ratios(k) = huge(1.0_dp)
            if (a > 0) made%ratios(k) = current%costs(j) / a
        end do
        call sort(1, size(made%indices), by_ratio, made)
    end function

    function by_ratio(a, b, context) bind(c) result(exchanged)
        integer(c_int32_t), value :: a, b
        type(c_ptr), value :: context
        integer(c_int64_t) :: exchanged
        type(ordered_row), pointer :: row
        call c_f_pointer(context, row)
        exchanged = 0
        if (row%ratios(a) <= row%ratios(b)) return
        row%indices([a, b]) = row%indices([b, a])
        row%coefficients([a, b]) = row%coefficients([b, a])
        row%ratios([a, b]) = row%ratios([b, a])
        exchanged = 1
    end function

    ! Enumeration

    !> Enumerates depth first; tries a branching variable at 1, then at 0.
    subroutine enumerate(current, bridge, every, found)
        type(state), intent(inout) :: current
        type(reporter), intent(inout) :: bridge
        integer, intent(in) :: every
        type(outcome), intent(inout) :: found
        integer, allocatable :: variable(:), depth_of_trail(:)
        logical, allocatable :: tried_zero(:)
        integer :: depth, branching
        allocate (variable(current%n), depth_of_trail(current%n), tried_zero(current%n))
        depth = 0
        do
            found%nodes = found%nodes + 1
            if (mod(found%nodes, every) == 0) call show(bridge, 'search', found)
            if (ends(bridge)) return
            call examine(current, found, bridge, branching)
            if (branching > 0) then
                depth = depth + 1
                variable(depth) = branching
                depth_of_trail(depth) = current%fixed
                tried_zero(depth) = .false.
                call fix(current, branching, 1)
                cycle
            end if
            do while (depth > 0)
                if (.not. tried_zero(depth)) exit
                depth = depth - 1
            end do
            if (depth == 0) return
            call unfix(current, depth_of_trail(depth))
            tried_zero(depth) = .true.
            call fix(current, variable(depth), 0)
        end do
    end subroutine

    !> Processes one node: fixes implied variables, computes the bound, and keeps a better point.
    !> `branching` is the variable to branch on, or 0 if the node is pruned.
    subroutine examine(current, found, bridge, branching)
        type(state), intent(inout) :: current
        type(outcome), intent(inout) :: found
        type(reporter), intent(inout) :: bridge
        integer, intent(out) :: branching
        real(dp) :: bound, fixed_cost, cover
        integer :: i, candidate
        branching = 0
        if (.not. propagated(current)) return
        fixed_cost = current%constant + sum(current%costs, mask=current%x == 1)
        bound = fixed_cost
        candidate = 0
        do i = 1, size(current%rows)
            call cover_row(current, current%rows(i), cover, candidate)
            if (candidate > 0 .and. (branching == 0 .or. fixed_cost + cover > bound)) then
                branching = candidate
            end if
            bound = max(bound, fixed_cost + cover)
        end do
        if (rounded_up(current, bound) >= found%best - eps) then
            branching = 0
        else if (branching == 0) then
            call keep(current, fixed_cost, found)
            call show(bridge, 'incumbent', found)
        end if
    end subroutine

    !> Fixes every variable whose other value would violate a row. False if a row cannot be
    !> satisfied.
    logical function propagated(current)
        type(state), intent(inout) :: current
        integer :: i, k, j, before
        real(dp) :: slack
        propagated = .false.
        do
            before = current%fixed
            do i = 1, size(current%rows)
                associate (row => current%rows(i))
                    slack = largest_activity(current, row) - row%rhs
                    if (slack < -feasibility) return
                    do k = 1, size(row%indices)
                        j = row%indices(k)
                        if (current%x(j) /= free) cycle
                        if (abs(row%coefficients(k)) <= slack + feasibility) cycle
                        call fix(current, j, merge(1, 0, row%coefficients(k) > 0))
                    end do
                end associate
            end do
            if (current%fixed == before) exit
        end do
        propagated = .true.
    end function

    !> The activity of a row with every free variable at its better value.
    real(dp) function largest_activity(current, row)
        type(state), intent(in) :: current
        type(ordered_row), intent(in) :: row
        integer :: k
        largest_activity = 0
        do k = 1, size(row%indices)
            select case (current%x(row%indices(k)))
            case (1)
                largest_activity = largest_activity + row%coefficients(k)
            case (free)
                largest_activity = largest_activity + max(row%coefficients(k), 0.0_dp)
            end select
        end do
    end function

    !> The least cost at which free variables, fractional ones allowed, satisfy the row, and the
    !> first of them; 0 and 0 when the row is satisfied with all of them at 0.
    subroutine cover_row(current, row, cost, first)
        type(state), intent(in) :: current
        type(ordered_row), intent(in) :: row
        real(dp), intent(out) :: cost
        integer, intent(out) :: first
        real(dp) :: missing, part
        integer :: k
        cost = 0
        first = 0
        missing = row%rhs
        do k = 1, size(row%indices)
            if (current%x(row%indices(k)) == 1) missing = missing - row%coefficients(k)
        end do
        do k = 1, size(row%indices)
            if (missing <= feasibility) return
            if (row%coefficients(k) <= 0 .or. current%x(row%indices(k)) /= free) cycle
            if (first == 0) first = row%indices(k)
            part = min(1.0_dp, missing / row%coefficients(k))
            cost = cost + part * current%costs(row%indices(k))
            missing = missing - part * row%coefficients(k)
        end do
    end subroutine

    !> The smallest objective value that is not below a bound.
    real(dp) function rounded_up(current, bound)
        type(state), intent(in) :: current
        real(dp), intent(in) :: bound
        rounded_up = bound
        if (current%scale > 0) rounded_up = current%constant + &
            epsilon_ceiling((bound - current%constant) * current%scale, feasibility) / current%scale
    end function

    subroutine fix(current, j, value)
        type(state), intent(inout) :: current
        integer, intent(in) :: j, value
        current%x(j) = value
        current%fixed = current%fixed + 1
        current%trail(current%fixed) = j
    end subroutine

    subroutine unfix(current, fixed)
        type(state), intent(inout) :: current
        integer, intent(in) :: fixed
        current%x(current%trail(fixed + 1:current%fixed)) = free
        current%fixed = fixed
    end subroutine

    !> Stores the point with every free variable at 0, which is better than the best so far.
    subroutine keep(current, cost, found)
        type(state), intent(in) :: current
        real(dp), intent(in) :: cost
        type(outcome), intent(inout) :: found
        found%found = .true.
        found%best = cost
        found%x = merge(1, 0, current%x == 1)
        where (current%complemented) found%x = 1 - found%x
    end subroutine

    subroutine show(bridge, phase, found)
        type(reporter), intent(inout) :: bridge
        character(*), intent(in) :: phase
        type(outcome), intent(in) :: found
        character(80) :: line
        if (found%found) then
            write (line, '(a10, i10, a, es16.8e2)') phase, found%nodes, ' nodes, best', found%best
        else
            write (line, '(a10, i10, a)') phase, found%nodes, ' nodes'
        end if
        call lowercasee(line)
        call print_line(bridge, trim(line))
        call report(bridge, phase, found%nodes, found%best, found%x)
        if (associated(bridge%solve)) bridge%solve%nodes_explored = found%nodes
    end subroutine
end module
