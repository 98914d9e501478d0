"""Summaries for lldb.

    (lldb) command script import zktarn_lldb.py

A vector then prints as `marks vector, 3 of 8 = {x2 = 2, x3 = 9, x8 = -6}`. Lists end after 100
elements, with three dots.
"""

import lldb

SHOWN = 100

KINDS = {
    # coef, ind, elm
    (True, True, True): "marks vector",
    (True, True, False): "list vector",
    (True, False, False): "dense vector",
    (True, False, True): "dense vector with marks",
    (False, True, True): "index set",
    (False, True, False): "index list",
    (False, False, True): "marks without a list",
    (False, False, False): "vector without arrays",
}


def member(value, *names):
    for name in names:
        value = value.GetChildMemberWithName(name)
    return value


def unsigned(value, *names):
    return member(value, *names).GetValueAsUnsigned()


def signed(value, *names):
    return member(value, *names).GetValueAsSigned()


def is_present(array):
    return unsigned(array, "data") != 0


def extent(array, dimension=0):
    return member(array, "extent").GetChildAtIndex(dimension).GetValueAsSigned()


def element(array, k):
    """Element k of the block, counted from 0."""
    return member(array, "data").GetChildAtIndex(k, lldb.eNoDynamicValues, True)


def braces(count, text_of):
    """The texts of `count` elements, as many as are shown."""
    texts = [text_of(k) for k in range(min(count, SHOWN))]
    return "{" + ", ".join(texts + (["..."] if count > SHOWN else [])) + "}"


def host_array(value, _):
    value = value.GetNonSyntheticValue()
    if not is_present(value):
        return "absent array"
    columns = member(value, "extent").GetNumChildren() == 2
    count = extent(value) * (extent(value, 1) if columns else 1)
    shape = f"{extent(value)} x {extent(value, 1)}, by columns" if columns else f"{extent(value)}"
    return f"array of {shape} = " + braces(count, lambda k: element(value, k).GetValue())


def vector(value, _):
    value = value.GetNonSyntheticValue()
    coef, ind, elm = (member(value, name) for name in ("coef", "ind", "elm"))
    has = tuple(map(is_present, (coef, ind, elm)))
    kind = KINDS[has]
    if not any(has):
        return kind
    capacity = min(extent(array) for array, there in zip((coef, ind, elm), has) if there)
    if not has[1]:
        numbers = coef if has[0] else elm
        return f"{kind} of {capacity} = " + braces(
            capacity, lambda j: f"x{j + 1} = {element(numbers, j).GetValue()}")
    nz = signed(value, "nz")
    if not 0 <= nz <= capacity:
        return f"{kind}, nz = {nz}, which is not within 0 and {capacity}"

    def listed(k):
        j = element(ind, k).GetValueAsSigned()
        if not 1 <= j <= capacity:
            return f"x{j} = out of range"
        if has[2] and element(elm, j - 1).GetValueAsSigned() < 1:
            return f"x{j} = no mark"
        return f"x{j} = " + (element(coef, j - 1).GetValue() if has[0] else "1")

    return f"{kind}, {nz} of {capacity} = " + braces(nz, listed)


def optional_ref(value, _):
    target = member(value.GetNonSyntheticValue(), "target_")
    if target.GetValueAsUnsigned() == 0:
        return "absent"
    referred = target.Dereference()
    return "reference = {target = " + (referred.GetSummary() or str(referred.GetValue())) + "}"


def rng_state(value, _):
    generator = unsigned(value, "generator")
    return f"generator {generator:#x}" if generator != 0 else "no generator"


def value_slot(value, _):
    address = unsigned(value, "value")
    if address == 0:
        return "empty slot"
    with_parameters = signed(value, "type", "has_parameters") != 0
    size = signed(value, "parameters", "value_size") if with_parameters else signed(value, "type", "size")
    return f"value of {size} byte{'' if size == 1 else 's'} at {address:#x}"


def cbdatalist(value, internal):
    first, second = signed(value, "first_handle"), signed(value, "second_handle")
    slot = value_slot(member(value, "slot"), internal)
    return f"{slot} = {{first_handle = {first}, second_handle = {second}}}"


def __lldb_init_module(debugger, _):
    for name, options in (
        ("host_array", '-x "^zktarn::(host_array<.*>|array_[12]d<.*>)$"'),
        ("vector", '"zktarn::vector_type::vector"'),
        ("optional_ref", '-x "^zktarn::optional_ref<.*>$"'),
        ("rng_state", '"zktarn::random::rng_state"'),
        ("value_slot", '"zktarn::callbacks_type_util::value_slot"'),
        ("cbdatalist", '"zktarn::callbacks_type_util::cbdatalist"'),
    ):
        debugger.HandleCommand(f"type summary add -w zktarn -F {__name__}.{name} {options}")
    debugger.HandleCommand("type category enable zktarn")
