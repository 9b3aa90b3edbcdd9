"""What is to be reached, where it stood before, and what a run measured."""
import operator
from dataclasses import dataclass

from contenders import (HUGE, LARGE, OTHER, PROTOBUF, SCHEMAS, SMALL, document_name, library_name,
                        run_name, validating_name, walk_name, yanglint_name)
from tables import table

AT_MOST, AT_LEAST = operator.le, operator.ge
VERBS = "encode", "decode", "convert"


@dataclass
class Target:
    what: str
    before: str
    wanted: float
    stretch: float  # None: no more is wanted
    measured: dict  # by schema; None where the run has not what it takes
    reaches: object = AT_MOST

    def verdict(self):
        figures = [figure for figure in self.measured.values() if figure is not None]
        if not figures:
            return "not measured"
        if not all(self.reaches(round(figure, 2), self.wanted) for figure in figures):
            return "not met"
        further = self.stretch is not None and all(
            self.reaches(round(figure, 2), self.stretch) for figure in figures)
        return "met, stretch too" if further else "met"

    def cells(self):
        def bound(figure):
            return "" if figure is None else (
                f"{'at most' if self.reaches is AT_MOST else 'at least'} {figure:,g}")

        def shown(schema):
            figure = self.measured.get(schema)
            return "" if figure is None else f"{figure:,.0f}" if figure >= 100 else f"{figure:.2f}"

        return [self.what, self.before, bound(self.wanted), bound(self.stretch),
                *map(shown, SCHEMAS), self.verdict()]


def in_time(rows):
    """Targets of whole processes over many entries; rows by name."""
    def ratio(slower, *faster):
        return lambda schema: rows[slower(schema)].ratio_to(*(rows[one(schema)] for one in faster))

    def of(verb, threads=1, losses=True, into=lambda schema: schema):
        return lambda schema: "aceconv " + run_name(verb, into(schema), threads, losses)

    def aceconv(name):
        return lambda schema: "aceconv " + name(schema)

    def decoded_walk(schema):
        return walk_name(schema, "decoded")

    def both(figure):
        return {schema: figure(schema) for schema in SCHEMAS}

    encode = of("encode")
    silent = ", without losses"
    for losses, note in ((True, ""), (False, silent)):
        yield Target(f"encode against the simdjson walk{note}", "6.3", 4, 2.7,
                     both(ratio(of("encode", losses=losses), walk_name)))
    for losses, note in ((True, ""), (False, silent)):
        yield Target(f"encode against protobuf, binary to binary{note}", "1.9", 1.1, 0.8,
                     {"base": ratio(of("encode", losses=losses), lambda schema: PROTOBUF)("base")})
    for losses, note in ((True, ""), (False, silent)):
        yield Target(f"decode against the walk of the text that it writes{note}", "about 5", 4, 3,
                     both(ratio(of("decode", losses=losses), decoded_walk)))
    yield Target("convert, how many times faster than yanglint, validated", "3.8", 9, 13,
                 both(ratio(yanglint_name, of("convert"))), AT_LEAST)
    yield Target("convert with its losses against encode plus decode without", "2.5", 1.6, 1.35,
                 both(ratio(of("convert"), of("encode", losses=False),
                            of("decode", losses=False, into=OTHER.get))))
    yield Target("one call of the library for each entry against the command's encode", "", 1.5, None,
                 both(lambda schema: rows[library_name(schema)].ratio_to(rows[encode(schema)])))
    yield Target("documents against lines, encode", "1.4", 1.1, 1.0,
                 both(ratio(aceconv(document_name), encode)))
    for verb, before in zip(VERBS, ("1.8", "1.7", "2.0")):
        yield Target(f"two threads, how many times faster than one: {verb}", before, 1.85, 1.95,
                     both(ratio(of(verb), of(verb, threads=2))), AT_LEAST)
    yield Target("validating backend, how many times faster than yanglint, validated", "1.9", 2,
                 None, both(ratio(yanglint_name, aceconv(validating_name))), AT_LEAST)


def of_growth(results):
    for verb in VERBS:
        def growth(schema, verb=verb):
            if HUGE not in results:
                return None
            name = "aceconv " + run_name(verb, schema)
            small, huge = (results[count][name].seconds() / count for count in (SMALL, HUGE))
            return huge / small

        yield Target(f"1,000,000 entries against 10,000, an entry: {verb}", "0.5 to 0.8", 1.05,
                     None, {schema: growth(schema) for schema in SCHEMAS})


def of_memory(results):
    def most(schema):
        return max(row.peak - row.rest for rows in results.values() for name, row in rows.items()
                   if name.startswith("aceconv") and name.split()[2].strip(",") == schema)

    yield Target("memory above rest, MB: any size, verb, order of members", "4", 16, None,
                 {schema: most(schema) for schema in SCHEMAS})


def of_cold_start(rows):
    yield Target("one entry from cold against yanglint: encode", "1.0", 0.5, 0.4,
                 {schema: rows["aceconv " + run_name("encode", schema)].ratio_to(
                     rows[yanglint_name(schema)]) for schema in SCHEMAS})


def of_plugin(instructions):
    """instructions: of a conversion, by case."""
    for verb, schema, before, wanted, stretch in (
        ("encode", "base", "3,257", 2400, None), ("decode", "base", "2,384", 1700, None),
        ("encode", "um", "5,158", 3600, None), ("decode", "um", "1,364", 1200, None),
    ):
        yield Target(f"instructions of the plug-in alone, typical entry: {verb} {schema}", before,
                     wanted, stretch, {schema: instructions[f"{verb}-{schema}/typical"]})


def of_python(ratios):
    """ratios: what python_speed.py measured, by schema."""
    for name, what, wanted in (
        ("batch", "Python, encode_many against the command's encode", 1.3),
        ("round trip", "Python, dict to bag to dict against json's own round trip", 3),
    ):
        yield Target(what, "", wanted, None,
                     {schema: ratios[schema][name] for schema in SCHEMAS})


def target_table(results, cold, instructions, in_python):
    targets = [*in_time(results[LARGE]), *of_cold_start(cold), *of_growth(results),
               *of_memory(results), *of_plugin(instructions), *of_python(in_python)]
    return table(["", "Before", "Wanted", "Stretch", "Base", "UM", ""],
                 [target.cells() for target in targets])
