"""Builds examples/companion as docs/companion.md says: outside the tree, with an installed library and with a copy of it."""
import re
import shutil

from document import PAGE, block, under
from program_test_case import BIN, ProgramTest

TREE = PAGE.parents[1]
EXAMPLE = TREE / "examples/companion"
TAKEN = "Foundation Shared Render Desktop programs tests shared_test"  # targets of the project that contains the copy


class CompanionExample(ProgramTest):
    def setUp(self):
        super().setUp()
        for name in ("companion.cpp", "CMakeLists.txt"):
            shutil.copy(EXAMPLE / name, self.folder)

    def run_command(self, *command, code=0):
        done = self.call(*command)
        self.assertEqual(done.returncode, code, done.stdout + done.stderr)
        return done.stderr.decode()

    def test_the_page_shows_it(self):
        self.assertEqual(block("cpp", "In C++"), (EXAMPLE / "companion.cpp").read_text(encoding="utf-8"))
        self.assertEqual(block("cmake", "In C++"), (EXAMPLE / "CMakeLists.txt").read_text(encoding="utf-8"))

    def install(self):
        prefix = self.folder / "prefix"
        self.run_command("cmake", "--install", BIN.parent, "--component", "development", "--prefix", prefix)
        self.environment |= {"CMAKE_PREFIX_PATH": str(prefix), "PKG_CONFIG_PATH": f"{prefix}/lib/pkgconfig"}
        return prefix

    def test_an_installed_library_takes_no_name_of_its_users(self):
        prefix = self.install()
        symbols = self.call("nm", "--defined-only", "--extern-only", "--format=just-symbols",
                            *prefix.rglob("*.a")).stdout.decode()
        self.assertNotRegex(symbols, r"(?m)^(?!_Z)\w+$")  # a C name
        self.assertNotRegex(symbols, r"(?m)^_Z(eq|ne|ss|ls)")  # an operator
        names = re.findall(r"(?m)^_Z(?:T[ISV]|GV|Z)*N?[KRO]*(\d+)(\w+)", symbols)
        others = {name[:int(length)] for length, name in names if not name.lower().startswith("tarno")}
        self.assertLessEqual(others, {"nlohmann", "__gnu_cxx"})
        for header in prefix.rglob("*.hpp"):
            with self.subTest(header.name):
                code = re.sub(r"^namespace (tarno|Tarno\w+) \{.*?^\}  // namespace", "", header.read_text(), flags=re.M | re.S)
                names = re.findall(r"^(?!#|//|template|inline .* Tarno\w+::|\w+ (?:std::hash<)?Tarno)\w.*", code, re.M)
                self.assertEqual(names, [])

    def test_a_shared_object_can_contain_it(self):
        self.install()
        self.run_command("sh", "-c", "c++ -std=c++20 -shared -fPIC -Wl,--no-undefined companion.cpp -o companion.so "
                         "$(pkg-config --cflags --libs tarno)")

    def test_an_installed_library_is_found_by_cmake_and_by_pkg_config(self):
        self.install()
        for code in under("In C++"):
            self.run_command("sh", "-e", "-c", code)
        for program, reason in ("build/companion", "Lid closed"), ("./companion", "Touch ID"):
            self.run_command(program, "locked", reason)
            self.assertIn(reason, self.run_program("tarno-status", "show").stdout.decode())
        self.environment["XDG_DATA_HOME"] = "/proc/nowhere"
        self.assertRegex(self.run_command(program, "locked", code=73), r"\Acompanion: cannot create [^\n]+\n\Z")

    def test_a_copy_in_another_project_takes_no_name_and_looks_for_no_drawing_library(self):
        project = (EXAMPLE / "CMakeLists.txt").read_text(encoding="utf-8")
        names = f"foreach(name {TAKEN})\n  add_custom_target(${{name}})\nendforeach()\n"
        (self.folder / "CMakeLists.txt").write_text(
            project.replace("find_package(Tarno REQUIRED)", f'{names}add_subdirectory("{TREE}" tarno)'))
        self.run_command("cmake", "-B", "build")
        variables = re.findall(r"^([\w-]+):", (self.folder / "build/CMakeCache.txt").read_text(), re.M)
        found = r"(?i).*(cairo|cli11|png|xcb|wayland|gtest|python)"
        self.assertEqual([name for name in variables if re.match(found, name)], [])
        self.assertIn("UTF8PROC_FOUND", variables)
