# Every target installs what is missing, configures and builds into build/, then runs.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)

.PHONY: deps configure build demo test bench clean

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

bench: build
	@for b in $(BUILD_DIR)/bin/bench_*; do echo "== $$b"; scripts/with-postgres $$b; done

clean:
	@rm -rf $(BUILD_DIR)
