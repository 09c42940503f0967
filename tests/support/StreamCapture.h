#ifndef STREAMCAPTURE_H
#define STREAMCAPTURE_H

#include <QString>

#include <iostream>
#include <mutex>
#include <string>

/// Collects what any thread writes to \a stream (std::cout or std::cerr) while it lives.
class StreamCapture : public std::streambuf
{
public:
    explicit StreamCapture(std::ostream& stream) : m_stream(stream), m_previous(stream.rdbuf(this)) {}
    ~StreamCapture() override { m_stream.rdbuf(m_previous); }

    QString text() { return std::lock_guard<std::mutex>(m_mutex), QString::fromStdString(m_text); }

    int count(const QString& needle) { return text().count(needle); }

protected:
    int_type overflow(int_type c) override
    {
        return c == traits_type::eof() || xsputn(std::string(1, char(c)).data(), 1) ? c : traits_type::eof();
    }

    std::streamsize xsputn(const char* data, std::streamsize size) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_text.append(data, std::size_t(size));
        return size;
    }

private:
    std::ostream& m_stream;
    std::streambuf* m_previous;
    std::mutex m_mutex;
    std::string m_text;
};

#endif
