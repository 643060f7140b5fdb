# Every target installs what is missing, configures and builds into build/, then runs.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)
# The sanitizer build: every test under AddressSanitizer and UndefinedBehaviorSanitizer.
SANITIZE_DIR ?= build-sanitize
# The fuzzing build (clang) and how long each harness runs.
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZERS ?= line_batch fill guia_file jet_source sqlite_source
# The old Jet files of the import's tests seed the Jet reader's harness where they lie (never copied);
# its inputs are whole files, so they may be as long as the small ones.
JET_FIXTURES ?= $(CURDIR)/../shared/fixtures/jet
FUZZ_SEEDS_jet_source = $(wildcard $(JET_FIXTURES))
FUZZ_OPTIONS_jet_source = -max_len=400000 -timeout=60
FUZZ_OPTIONS_sqlite_source = -max_len=65536

# Leaks of the font libraries' process-wide caches are theirs, not ours; a finding ends the run.
export LSAN_OPTIONS ?= suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS ?= print_stacktrace=1:halt_on_error=1
# GCC 12's runtime misreads some dynamic TLS blocks as an old glibc's and its leak tracer then dies
# at exit now and then ("Tracer caught signal 11"); not intercepting __tls_get_addr avoids that.
export ASAN_OPTIONS ?= detect_leaks=1:abort_on_error=1:intercept_tls_get_addr=0

.PHONY: deps configure build demo test sanitize fuzz bench clean

deps:
	@scripts/install-deps

configure: deps
	@cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

demo: build
	@scripts/demo $(BUILD_DIR)

# The database tests run on SQLite and on a PostgreSQL server started for the run and removed after.
test: build
	@cd $(BUILD_DIR) && $(CURDIR)/scripts/with-postgres ctest --output-on-failure -j $(JOBS)

# Lightly optimised, only what the tests need, so that it fits beside the normal build in CI.
sanitize: deps
	@cmake -S . -B $(SANITIZE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
	  -DNIMBARA_SANITIZE=ON >/dev/null
	@cmake --build $(SANITIZE_DIR) -j $(JOBS) --target nimbara_tests nimbara_cups_tests
	@cd $(SANITIZE_DIR) && $(CURDIR)/scripts/with-postgres ctest --output-on-failure -j $(JOBS)

# Each harness runs FUZZ_SECONDS over its seeds from fuzz/corpus (and FUZZ_SEEDS_<harness>) and what
# earlier runs kept in $(FUZZ_DIR)/corpus; a crash leaves its input in $(FUZZ_DIR) and stops.
# One harness alone: make fuzz FUZZERS=jet_source FUZZ_SECONDS=3600
fuzz_run = mkdir -p $(FUZZ_DIR)/corpus/$(1) && (cd $(FUZZ_DIR) && bin/fuzz_$(1) -max_total_time=$(FUZZ_SECONDS) \
  -print_final_stats=1 $(FUZZ_OPTIONS_$(1)) corpus/$(1) $(CURDIR)/fuzz/corpus/$(1) $(FUZZ_SEEDS_$(1)))

fuzz: deps
	@cmake -S . -B $(FUZZ_DIR) -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
	  -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" -DNIMBARA_FUZZ=ON >/dev/null
	@cmake --build $(FUZZ_DIR) -j $(JOBS) --target $(addprefix fuzz_,$(FUZZERS))
	@$(foreach f,$(FUZZERS),$(call fuzz_run,$(f)) && ) true

bench: build
	@for b in $(BUILD_DIR)/bin/bench_*; do echo "== $$b"; scripts/with-postgres $$b; done

clean:
	@rm -rf $(BUILD_DIR) $(SANITIZE_DIR) $(FUZZ_DIR)
