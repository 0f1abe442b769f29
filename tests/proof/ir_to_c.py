# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""ir_to_c.py ENTRY < module.ll > module.c - translates the functions that ENTRY reaches from LLVM's text form to C.

Each instruction becomes one C statement on variables of the same width, and keeps its source line. Addresses
are computed in bytes. Signed arithmetic stays signed, so that an overflow can be found. An exception sets
`unwinding`, and each call that may throw is followed by a test of it. Fails for anything it does not know.
"""

import pathlib
import re
import sys

TOKEN = re.compile(
    r'\s*(c"[^"]*"|[%@!]"[^"]*"|[%@!][-\w.$]+|"[^"]*"|-?\d+|0x[0-9A-Fa-f]+|[A-Za-z_][\w.]*|\.\.\.|\#\d+|[{}\[\]()<>,=*!|;])'
)
ATTRIBUTES = set(
    """noundef zeroext signext nonnull noalias nocapture readonly writeonly readnone returned immarg nofree
    dead_on_unwind writable dso_local nest inreg allocalign allocptr noext""".split()
)
ATTRIBUTES_WITH_TYPE = {"dereferenceable", "dereferenceable_or_null", "sret", "range", "captures", "initializes", "memory"}
IGNORED_INTRINSICS = ("llvm.lifetime.", "llvm.experimental.noalias", "llvm.dbg.", "llvm.assume")


class Unknown(Exception):
    pass


class Text:
    """The tokens of one instruction or definition."""

    def __init__(self, text):
        self.tokens = TOKEN.findall(text)
        self.at = 0

    def peek(self, ahead=0):
        return self.tokens[self.at + ahead] if self.at + ahead < len(self.tokens) else None

    def next(self):
        token = self.peek()
        self.at += 1
        return token

    def accept(self, *tokens):
        if self.peek() in tokens:
            return self.next()
        return None

    def expect(self, token):
        if self.next() != token:
            raise Unknown(f"{token} expected: {' '.join(self.tokens)}")

    def skip_group(self):
        depth = 0
        while True:
            token = self.next()
            depth += token in "([{<"
            depth -= token in ")]}>"
            if depth == 0:
                return


class Module:
    def __init__(self, lines):
        self.types, self.globals, self.functions, self.declared = {}, {}, {}, set()
        self.metadata, self.nounwind, self.aliases = {}, set(), {}
        self.aggregates, self.type_lines = {}, []
        self.read(lines)

    def read(self, lines):
        body = None
        for line in lines:
            line = line.rstrip("\n")
            if body is not None:
                if line == "}":
                    body = None
                elif line:
                    body.append(line)
            elif line.startswith("define "):
                name = unquote(re.search(r'@("[^"]*"|[-\w.$]+)\(', line)[1])
                body = []
                self.functions[name] = (line, body)
            elif line.startswith("declare "):
                self.declared.add(line)
            elif line.startswith("%"):
                name, definition = line.split(" = type ", 1)
                self.types[unquote(name[1:])] = definition
            elif line.startswith("@"):
                name, definition = re.match(r'@("[^"]*"|[-\w.$]+) = (.*)', line).groups()
                alias = re.search(r'(?:^|\s)alias .*, ptr @("[^"]*"|[-\w.$]+)$', definition)
                if alias:
                    self.aliases[unquote(name)] = unquote(alias[1])
                self.globals[unquote(name)] = definition
            elif line.startswith("attributes "):
                number, words = re.match(r"attributes (#\d+) = \{(.*)\}", line).groups()
                if " nounwind " in words:
                    self.nounwind.add(number)
            elif line.startswith("!"):
                name, _, definition = line.partition(" = ")
                self.metadata[name] = definition

    # Types.

    def parse_type(self, text):
        token = text.next()
        if token == "{" or (token == "<" and text.peek() == "{"):
            packed = token == "<"
            if packed:
                text.expect("{")
            members = []
            while not text.accept("}"):
                members.append(self.parse_type(text))
                text.accept(",")
            if packed:
                text.expect(">")
            return ("struct", tuple(members), packed)
        if token == "[":
            count = int(text.next())
            text.expect("x")
            element = self.parse_type(text)
            text.expect("]")
            return ("array", count, element)
        if token in ("ptr", "void"):
            return (token,)
        if re.fullmatch(r"i(1|8|16|32|64|128)", token):
            return ("int", int(token[1:]))
        if token.startswith("%"):
            return self.parse_type(Text(self.types[unquote(token[1:])]))
        raise Unknown(f"type {token}")

    def layout(self, kind):
        """The size and the alignment in bytes."""
        if kind[0] == "int":
            size = max(1, kind[1] // 8)
            return size, size
        if kind[0] == "ptr":
            return 8, 8
        if kind[0] == "array":
            size, alignment = self.layout(kind[2])
            return size * kind[1], alignment
        offset, widest = 0, 1
        for member in kind[1]:
            size, alignment = self.layout(member)
            if not kind[2]:
                offset = -(-offset // alignment) * alignment
                widest = max(widest, alignment)
            offset += size
        return -(-offset // widest) * widest, widest

    def offset(self, kind, index):
        offset = 0
        for number, member in enumerate(kind[1]):
            size, alignment = self.layout(member)
            if not kind[2]:
                offset = -(-offset // alignment) * alignment
            if number == index:
                return offset
            offset += size
        raise Unknown("member")

    def c_type(self, kind):
        if kind[0] == "void":
            return "void"
        if kind[0] == "ptr":
            return "u8 *"
        if kind[0] == "int":
            return "_Bool" if kind[1] == 1 else f"u{kind[1]}"
        if kind not in self.aggregates:
            if kind[0] == "array":
                members = [f"{self.c_type(kind[2])} f[{kind[1]}];"]
            else:
                members = [f"{self.c_type(member)} f{i};" for i, member in enumerate(kind[1])]
            name = f"struct t{len(self.aggregates)}"
            packed = " __attribute__((packed))" if kind[0] == "struct" and kind[2] else ""
            self.aggregates[kind] = name
            self.type_lines.append(f"{name} {{ {' '.join(members)} }}{packed};")
        return self.aggregates[kind]

    # Places in the source.

    def place(self, number):
        location = self.metadata[number]
        line = re.search(r"line: (\d+)", location)
        scope = location
        while "file:" not in scope:
            scope = self.metadata[re.search(r"scope: (!\d+)", scope)[1]]
        file = self.metadata[re.search(r"file: (!\d+)", scope)[1]]
        return int(line[1]) if line else 0, re.search(r'filename: "([^"]*)"', file)[1]


def unquote(name):
    return name.strip('"')


def c_name(name):
    return "ir_" + re.sub(r"\W", "_", name)


def bytes_of(token):
    """The bytes of c"..."."""
    return [int(hexa, 16) if hexa else ord(char) for hexa, char in re.findall(r"\\([0-9A-Fa-f]{2})|(.)", token[2:-1])]


class Program:
    """Collects the functions and globals that are reached, and writes them."""

    def __init__(self, module, entry):
        self.module = module
        self.wanted, self.global_lines, self.global_names = [entry], [], {}
        self.prototypes, self.bodies = {}, []
        done = set()
        while self.wanted:
            name = self.wanted.pop()
            if name not in done:
                done.add(name)
                if name in module.functions:
                    self.bodies.append(Function(self, name).translate())

    def write(self, out):
        print('#include "runtime.h"', file=out)
        for lines in (self.module.type_lines, self.prototypes.values(), self.global_lines, self.bodies):
            for line in lines:
                print(line, file=out)

    def use_function(self, name, result, arguments, variadic=False):
        prototype = f"{self.module.c_type(result)} {c_name(name)}({', '.join(map(self.module.c_type, arguments)) or 'void'}"
        prototype += ", ...);" if variadic else ");"
        if self.prototypes.setdefault(c_name(name), prototype) != prototype:
            raise Unknown(f"two forms of {name}")
        self.wanted.append(name)
        return c_name(name)

    def undefined(self):
        """The C names of the functions that the runtime has to define."""
        return {name for name in self.prototypes if not any(f" {name}(" in body.split("{")[0] for body in self.bodies)}

    def use_global(self, name):
        if name in self.global_names:
            return self.global_names[name]
        c = self.global_names[name] = c_name(name).replace("ir_", "g_", 1)
        if name.startswith(("_ZTI", "_ZTV", "_ZTS")) or name not in self.module.globals:
            # A function's address is only handed on, for example to __cxa_throw(): do_call() has no indirect calls.
            self.global_lines.append(f"static u8 {c}[8];")
            return c
        definition = self.module.globals[name]
        match = re.search(r"(?:^|\s)(constant|global) (.*)", definition)
        text = Text(match[2])
        kind = self.module.parse_type(text)
        initial = self.initial(kind, text)
        # A constant is not const, because CBMC keeps the bytes of a const as well, and C would ask for casts.
        self.global_lines.append(f"static {self.module.c_type(kind)} {c} = {initial};")
        return c

    def initial(self, kind, text):
        token = text.peek()
        if token in ("zeroinitializer", "undef", "poison"):
            text.next()
            return "0" if kind[0] in ("int", "ptr") else "{0}"
        if token.startswith('c"'):
            return "{{" + ",".join(map(str, bytes_of(text.next()))) + "}}"
        if token == "[":
            text.next()
            members = []
            while not text.accept("]"):
                members.append(self.initial(self.module.parse_type(text), text))
                text.accept(",")
            return "{{" + ",".join(members) + "}}"
        if token in "{<":
            opened = text.next() == "<"
            if opened:
                text.expect("{")
            members = []
            while not text.accept("}"):
                members.append(self.initial(self.module.parse_type(text), text))
                text.accept(",")
            if opened:
                text.expect(">")
            return "{" + ",".join(members) + "}"
        return self.constant(kind, text)

    def constant(self, kind, text):
        """The C expression of a constant that is no aggregate."""
        token = text.next()
        if token.startswith("@"):
            name = unquote(token[1:])
            return f"((u8 *)&{self.use_global(name)})"
        if token == "null":
            return "((u8 *)0)"
        if token in ("true", "false"):
            return "1" if token == "true" else "0"
        if token in ("undef", "poison"):
            return "0" if kind[0] == "ptr" else f"UNKNOWN_{kind[1]}"
        if token == "zeroinitializer":
            return "0"
        if re.fullmatch(r"-?\d+", token):
            return f"((u{kind[1]}){token}ll)" if kind[1] > 1 else str(int(token) & 1)
        if token == "getelementptr":
            return self.address(text, self.operand_of_constant)
        raise Unknown(f"constant {token}")

    def operand_of_constant(self, text):
        kind = self.module.parse_type(text)
        return kind, self.constant(kind, text)

    def address(self, text, operand):
        """The C expression of a getelementptr."""
        while text.peek() in ("inbounds", "nuw", "nusw"):
            text.next()
        bracket = text.accept("(")
        kind = self.module.parse_type(text)
        text.expect(",")
        _, base = operand(text)
        constant, terms, first = 0, [], True
        while text.accept(","):
            if (text.peek() or "").startswith("!"):
                break
            index_kind, index = operand(text)
            number = re.fullmatch(r"\(\(u\d+\)(-?\d+)ll\)", index)
            if not first and kind[0] == "struct":
                constant += self.module.offset(kind, int(number[1]))
                kind = kind[1][int(number[1])]
                continue
            if not first:
                kind = kind[2]
            first = False
            size = self.module.layout(kind)[0]
            if number:
                constant += size * int(number[1])
            else:
                term = f"(s64)(s{index_kind[1]}){index}"
                terms.append(term if size == 1 else f"{size} * {term}")
        if bracket:
            text.expect(")")
        if constant or not terms:
            terms.append(str(constant))
        if terms == ["0"]:
            return base
        return f"({base} + ({' + '.join(terms)}))"


class Function:
    def __init__(self, program, name):
        self.program, self.module, self.name = program, program.module, name
        self.head, self.lines = self.module.functions[name]
        self.kinds, self.names, self.labels = {}, {}, {}
        self.declarations, self.out, self.phis = [], [], {}
        self.line = None

    def local(self, token):
        token = unquote(token[1:])
        if token not in self.names:
            self.names[token] = f"v{len(self.names)}_" + re.sub(r"\W", "_", token)
        return self.names[token]

    def label(self, token):
        token = unquote(token.lstrip("%"))
        if token not in self.labels:
            self.labels[token] = f"l{len(self.labels)}_" + re.sub(r"\W", "_", token)
        return self.labels[token]

    def skip_attributes(self, text):
        while True:
            token = text.peek()
            if token in ATTRIBUTES:
                text.next()
            elif token == "align":
                text.next()
                text.skip_group() if text.peek() == "(" else text.next()
            elif token in ATTRIBUTES_WITH_TYPE:
                text.next()
                text.skip_group()
            else:
                return

    def value(self, kind, text):
        token = text.peek()
        if token.startswith("%"):
            return self.local(text.next())
        if kind[0] in ("struct", "array"):
            if token in ("undef", "poison", "zeroinitializer"):
                text.next()
                return f"(({self.module.c_type(kind)}){{0}})"
            return f"(({self.module.c_type(kind)}){self.program.initial(kind, text)})"
        return self.program.constant(kind, text)

    def operand(self, text):
        kind = self.module.parse_type(text)
        self.skip_attributes(text)
        return kind, self.value(kind, text)

    # The instructions, by lines.

    def instructions(self):
        joined = []
        for line in self.lines:
            if line.startswith(("    ", "  ]")) and joined:
                joined[-1] += " " + line.strip()
            else:
                joined.append(line)
        return joined

    def translate(self):
        text = Text(self.head[len("define ") :])
        while text.peek() not in ("void", "ptr", "{", "[", "<") and not re.fullmatch(r"i\d+|%.*", text.peek()):
            if text.peek(1) == "(":
                text.next()
                text.skip_group()
            else:
                text.next()
        self.result = self.module.parse_type(text)
        text.next()
        text.expect("(")
        parameters, kinds = [], []
        while not text.accept(")"):
            if text.peek() == "...":
                raise Unknown(f"variadic {self.name}")
            kind = self.module.parse_type(text)
            self.skip_attributes(text)
            kinds.append(kind)
            parameters.append(f"{self.module.c_type(kind)} {self.local(text.next())}")
            text.accept(",")
        self.program.use_function(self.name, self.result, kinds)
        instructions = self.instructions()
        self.find_phis(instructions)
        self.block = None
        for line in instructions:
            if not line.startswith("  "):
                name = re.match(r'("[^"]*"|[-\w.$]+):', line)[1]
                self.block = unquote(name)
                self.out.append(f"{self.label(name)}:;")
                for variable, _, kind in self.phis.get(self.block, []):
                    self.out.append(f"  {variable} = {variable}_next;")
                continue
            self.instruction(line.strip())
        head = f"{self.module.c_type(self.result)} {c_name(self.name)}({', '.join(parameters) or 'void'}) {{"
        return "\n".join([head, *self.declarations, *self.out, "}"])

    def find_phis(self, instructions):
        block = None
        for line in instructions:
            if not line.startswith("  "):
                block = unquote(re.match(r'("[^"]*"|[-\w.$]+):', line)[1])
            elif match := re.match(r"  (%[^ ]+|%\"[^\"]*\") = phi (.*)", line):
                text = Text(match[2])
                kind = self.module.parse_type(text)
                variable = self.declare(match[1], kind)
                self.declarations.append(f"  {self.module.c_type(kind)} {variable}_next;")
                sources = {}
                while True:
                    text.expect("[")
                    value = self.value(kind, text)
                    text.expect(",")
                    sources[unquote(text.next()[1:])] = value
                    text.expect("]")
                    if text.peek() != "," or text.peek(1) != "[":
                        break
                    text.next()
                self.phis.setdefault(block, []).append((variable, sources, kind))

    def declare(self, token, kind):
        variable = self.local(token)
        self.declarations.append(f"  {self.module.c_type(kind)} {variable};")
        return variable

    def jump(self, token):
        target = unquote(token.lstrip("%"))
        copies = "".join(f"{variable}_next = {sources[self.block]}; " for variable, sources, _ in self.phis.get(target, []))
        return f"{{ {copies}goto {self.label(token)}; }}"

    def emit(self, statement):
        self.out.append("  " + statement)

    def instruction(self, line):
        debug = re.search(r", !dbg (!\d+)", line)
        if debug:
            place = self.module.place(debug[1])
            if place != self.line:
                self.line = place
                self.out.append(f'#line {place[0]} "{place[1]}"')
        line = re.sub(r"(, ![\w.]+ !\d+)+$", "", line)
        target = None
        if match := re.match(r'(%"[^"]*"|%[-\w.$]+) = (.*)', line):
            target, line = match.groups()
        text = Text(line)
        operation = text.next()
        if operation in ("tail", "notail", "musttail"):
            operation = text.next()
        handler = getattr(self, "do_" + operation, None)
        if handler is None:
            raise Unknown(f"instruction {line}")
        handler(target, text)

    def assign(self, target, kind, expression):
        self.emit(f"{self.declare(target, kind)} = {expression};")

    def do_phi(self, target, text):
        pass

    def do_alloca(self, target, text):
        text.accept("inalloca")
        kind = self.module.parse_type(text)
        if text.accept(",") and text.peek() != "align":
            raise Unknown("alloca of many")
        variable = self.declare(target, ("ptr",))
        self.declarations.append(f"  {self.module.c_type(kind)} {variable}_object;")
        self.emit(f"{variable} = (u8 *)&{variable}_object;")

    def do_load(self, target, text):
        text.accept("volatile")
        kind = self.module.parse_type(text)
        text.expect(",")
        _, address = self.operand(text)
        value = f"*({self.module.c_type(kind)} *){address}"
        self.assign(target, kind, value)

    def do_store(self, target, text):
        text.accept("volatile")
        kind, value = self.operand(text)
        text.expect(",")
        _, address = self.operand(text)
        self.emit(f"*({self.module.c_type(kind)} *){address} = {value};")

    def do_getelementptr(self, target, text):
        self.assign(target, ("ptr",), self.program.address(text, self.operand))

    def do_icmp(self, target, text):
        text.accept("samesign")
        predicate = text.next()
        kind, left = self.operand(text)
        text.expect(",")
        right = self.value(kind, text)
        operator = {"eq": "==", "ne": "!=", "gt": ">", "ge": ">=", "lt": "<", "le": "<="}[predicate[-2:]]
        if predicate[0] == "s":
            left, right = f"(s{kind[1]}){left}", f"(s{kind[1]}){right}"
        self.assign(target, ("int", 1), f"{left} {operator} {right}")

    def arithmetic(self, target, text, operator, signed=False, may_be_signed=False):
        while flag := text.accept("nsw", "nuw", "exact", "disjoint"):
            signed = signed or (may_be_signed and flag == "nsw")
        kind, left = self.operand(text)
        text.expect(",")
        right = self.value(kind, text)
        if signed:
            left, right = f"(s{kind[1]}){left}", f"(s{kind[1]}){right}"
        self.assign(target, kind, f"({self.module.c_type(kind)})({left} {operator} {right})")

    def do_add(self, target, text):
        self.arithmetic(target, text, "+", may_be_signed=True)

    def do_sub(self, target, text):
        self.arithmetic(target, text, "-", may_be_signed=True)

    def do_mul(self, target, text):
        self.arithmetic(target, text, "*", may_be_signed=True)

    def do_udiv(self, target, text):
        self.arithmetic(target, text, "/")

    def do_urem(self, target, text):
        self.arithmetic(target, text, "%")

    def do_sdiv(self, target, text):
        self.arithmetic(target, text, "/", signed=True)

    def do_srem(self, target, text):
        self.arithmetic(target, text, "%", signed=True)

    def do_shl(self, target, text):
        self.arithmetic(target, text, "<<")

    def do_lshr(self, target, text):
        self.arithmetic(target, text, ">>")

    def do_ashr(self, target, text):
        self.arithmetic(target, text, ">>", signed=True)

    def do_and(self, target, text):
        self.arithmetic(target, text, "&")

    def do_or(self, target, text):
        self.arithmetic(target, text, "|")

    def do_xor(self, target, text):
        self.arithmetic(target, text, "^")

    def conversion(self, target, text, expression):
        text.accept("nneg", "nuw", "nsw")
        text.accept("nneg", "nuw", "nsw")
        kind, value = self.operand(text)
        text.expect("to")
        wider = self.module.parse_type(text)
        self.assign(target, wider, expression(kind, value, wider))

    def do_zext(self, target, text):
        self.conversion(target, text, lambda kind, value, to: f"({self.module.c_type(to)}){value}")

    def do_sext(self, target, text):
        def extend(kind, value, to):
            signed = f"-(s{to[1]}){value}" if kind[1] == 1 else f"(s{to[1]})(s{kind[1]}){value}"
            return f"(u{to[1]})({signed})"

        self.conversion(target, text, extend)

    def do_trunc(self, target, text):
        def cut(_kind, value, to):
            return f"(_Bool)({value} & 1)" if to[1] == 1 else f"(u{to[1]}){value}"

        self.conversion(target, text, cut)

    def do_ptrtoint(self, target, text):
        self.conversion(target, text, lambda kind, value, to: f"({self.module.c_type(to)})(u64){value}")

    def do_inttoptr(self, target, text):
        self.conversion(target, text, lambda kind, value, to: f"(u8 *)(u64){value}")

    def do_bitcast(self, target, text):
        self.conversion(target, text, lambda kind, value, to: value)

    def do_freeze(self, target, text):
        kind, value = self.operand(text)
        self.assign(target, kind, value)

    def do_select(self, target, text):
        _, condition = self.operand(text)
        text.expect(",")
        kind, yes = self.operand(text)
        text.expect(",")
        _, no = self.operand(text)
        self.assign(target, kind, f"{condition} ? {yes} : {no}")

    def member_path(self, kind, text):
        path = ""
        while text.accept(","):
            index = int(text.next())
            path += f".f[{index}]" if kind[0] == "array" else f".f{index}"
            kind = kind[2] if kind[0] == "array" else kind[1][index]
        return kind, path

    def do_extractvalue(self, target, text):
        kind, value = self.operand(text)
        member, path = self.member_path(kind, text)
        self.assign(target, member, value + path)

    def do_insertvalue(self, target, text):
        kind, value = self.operand(text)
        text.expect(",")
        _, inserted = self.operand(text)
        _, path = self.member_path(kind, text)
        self.assign(target, kind, value)
        self.emit(f"{self.local(target)}{path} = {inserted};")

    def do_br(self, _target, text):
        if text.accept("label"):
            self.emit(self.jump(text.next()))
            return
        _, condition = self.operand(text)
        text.expect(",")
        text.expect("label")
        yes = self.jump(text.next())
        text.expect(",")
        text.expect("label")
        self.emit(f"if ({condition}) {yes} else {self.jump(text.next())}")

    def do_switch(self, _target, text):
        kind, value = self.operand(text)
        text.expect(",")
        text.expect("label")
        default = self.jump(text.next())
        text.expect("[")
        while not text.accept("]"):
            _, case = self.operand(text)
            text.expect(",")
            text.expect("label")
            self.emit(f"if ({value} == {case}) {self.jump(text.next())}")
        self.emit(default)

    def do_ret(self, _target, text):
        kind = self.module.parse_type(text)
        self.emit("return;" if kind[0] == "void" else f"return {self.value(kind, text)};")

    def do_unreachable(self, _target, _text):
        self.emit("UNREACHABLE();")

    def leave(self):
        if self.result[0] == "void":
            return "return;"
        if self.result[0] in ("int", "ptr"):
            return f"return ({self.module.c_type(self.result)})0;"
        return f"return ({self.module.c_type(self.result)}){{0}};"

    # Calls and exceptions.

    def do_call(self, target, text):
        nounwind = self.call(target, text)
        if not nounwind:
            self.emit(f"if (unwinding) {self.leave()}")

    def do_invoke(self, target, text):
        self.call(target, text)
        text.expect("to")
        text.expect("label")
        normal = self.jump(text.next())
        text.expect("unwind")
        text.expect("label")
        self.emit(f"if (unwinding) {self.jump(text.next())} else {normal}")

    def call(self, target, text):
        self.skip_attributes(text)
        result = self.module.parse_type(text)
        variadic = False
        fixed = None
        if text.peek() == "(":
            text.next()
            fixed = 0
            while not text.accept(")"):
                if text.accept("..."):
                    variadic = True
                else:
                    self.module.parse_type(text)
                    fixed += 1
                text.accept(",")
        callee = text.next()
        if not callee.startswith("@"):
            raise Unknown(f"call of {callee}")
        name = unquote(callee[1:])
        name = self.module.aliases.get(name, name)
        text.expect("(")
        if name.startswith(IGNORED_INTRINSICS):
            return True
        arguments, kinds, tokens = [], [], []
        while not text.accept(")"):
            kind = self.module.parse_type(text)
            self.skip_attributes(text)
            tokens.append(text.peek())
            arguments.append(self.value(kind, text))
            kinds.append(kind)
            text.accept(",")
        nounwind = False
        while (text.peek() or "").startswith("#"):
            nounwind = text.next() in self.module.nounwind or nounwind
        if name in ("proof_claim", "proof_reached"):
            self.claim(name, arguments[0], tokens[1])
            return True
        if name.startswith("llvm."):
            self.intrinsic(target, name, result, arguments, kinds, tokens)
            return True
        function = self.program.use_function(name, result, kinds[:fixed] if variadic else kinds, variadic)
        call = f"{function}({', '.join(arguments)})"
        if target and result[0] != "void":
            self.assign(target, result, call)
        else:
            self.emit(call + ";")
        return nounwind

    def claim(self, name, condition, token):
        text = Text(re.search(r"constant (.*)", self.module.globals[unquote(token[1:])])[1])
        self.module.parse_type(text)
        words = bytes(bytes_of(text.next())).decode().rstrip("\0")
        self.emit(f'{name.upper()}({condition}, "{words}");')

    def intrinsic(self, target, name, result, arguments, kinds, tokens):
        base = name.split(".")[1]
        if base in ("memcpy", "memmove", "memset"):
            how = base if re.fullmatch(r"\d+", tokens[2]) else f"{base}_loop"
            self.emit(f"proof_{how}({', '.join(arguments[:3])});")
        elif base == "expect":
            self.assign(target, result, arguments[0])
        elif base in ("umin", "umax", "smin", "smax"):
            prefix = f"(s{kinds[0][1]})" if base[0] == "s" else ""
            operator = "<" if base.endswith("min") else ">"
            self.assign(
                target, result, f"{prefix}{arguments[0]} {operator} {prefix}{arguments[1]} ? {arguments[0]} : {arguments[1]}"
            )
        elif match := re.match(r"llvm\.([us])(add|sub|mul)\.with\.overflow", name):
            variable = self.declare(target, result)
            letter = match[1]
            bits = kinds[0][1]
            self.emit(
                f"{{ {letter}{bits} r; {variable}.f1 = __builtin_{match[2]}_overflow(({letter}{bits}){arguments[0]}, "
                f"({letter}{bits}){arguments[1]}, &r); {variable}.f0 = (u{bits})r; }}"
            )
        elif base in ("ctlz", "cttz"):
            self.assign(target, result, f"proof_{base}_{kinds[0][1]}({arguments[0]})")
        elif base == "trap":
            self.emit("UNREACHABLE();")
        else:
            raise Unknown(name)

    def do_landingpad(self, target, text):
        kind = self.module.parse_type(text)
        rest = text.tokens[text.at :]
        clauses = [rest[i + 1 : i + 3] for i, token in enumerate(rest) if token in ("catch", "filter")]
        if any(clause != ["ptr", "null"] for clause in clauses):
            raise Unknown("catch of a type")
        self.declare(target, kind)
        self.emit("unwinding = 0;")
        self.emit(f"{self.local(target)} = (({self.module.c_type(kind)}){{ thrown, 1 }});")

    def do_resume(self, _target, text):
        self.emit("unwinding = 1;")
        self.emit(self.leave())


def main():
    program = Program(Module(sys.stdin), sys.argv[1])
    runtime = (pathlib.Path(__file__).parent / "runtime.c").read_text()
    defined = set(re.findall(r"^\w[\w *]*\b(ir_\w+)\(", runtime, re.MULTILINE))
    missing = program.undefined() - defined
    if missing:
        raise Unknown(f"runtime.c lacks {', '.join(sorted(missing))}")
    program.write(sys.stdout)


if __name__ == "__main__":
    try:
        main()
    except Unknown as unknown:
        sys.exit(f"ir_to_c: {unknown}")
