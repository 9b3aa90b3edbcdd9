// Where the products of a run go: to one output, or to one for each input.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "stream/output.h"
#include "stream/sink.h"
#include "tools/aceconv/run.h"

namespace aceconv::tool {

class Products {
  public:
    /// `of_none` is the schema of an output without entries.
    Products(Run &run, OutputFormat format, Schema of_none, ReaderGone gone);
    /// Leaves no folder that was made for outputs that did not come.
    ~Products();
    Products(const Products &) = delete;
    Products &operator=(const Products &) = delete;

    /// To be called in the order of the inputs. What Sink::write throws.
    void write(const Entry &entry, Schema schema, std::string_view product);
    /// Completes them, and with them the report if there is one: all get their names, or none
    /// does when the run was stopped. An input with nothing but faults has no output of its own.
    void finish(Output *report);

    /// Of the one output there is.
    [[nodiscard]] bool to_terminal() const { return current_ && current_->output->is_terminal(); }

  private:
    struct Product {
        Product(const std::string &path, ReaderGone gone, OutputFormat format, Schema of_none);
        std::unique_ptr<Output> output;
        std::unique_ptr<Sink> sink;
    };

    void open();
    void close();
    void go_on_to(std::size_t input);

    Run &run_;
    const OutputFormat format_;
    const Schema of_none_;
    const ReaderGone gone_;
    std::size_t at_ = 0; // the input whose output comes next, or is open
    std::unique_ptr<Product> current_;
    std::vector<std::unique_ptr<Output>> complete_;
    std::deque<std::string> made_; // folders, known by these names
    bool in_place_ = false;
};

} // namespace aceconv::tool
