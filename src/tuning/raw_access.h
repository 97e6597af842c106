#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "link/register_write.h"

/// The raw access tools of the ISP tune page: hex fields, single registers, the bit editor and dumps. Texts
/// are UTF-8; every character that is no hex digit counts as 0.
namespace qv5123 {

/// The first two characters of a field, high digit first; missing ones count as 0.
int byte_of_field(std::string_view text);
/// The first three characters as a 12-bit address; missing ones count as 0.
int address_of_field(std::string_view text);
/// A field of 2, 3 or 4 characters as that many digits; 0 for every other length.
int word_of_field(std::string_view text);
/// What a field takes: 2 digits, 3, or 2 to 4.
enum class HexForm { byte, address, word };
/// Whether the conversion for `form` reads the text as who typed it means it. Of "F1A2" as an address it
/// would take F1A, of "0x1A2" 001, and "5" as a word is 0.
bool reads_as_typed(HexForm form, std::string_view text);
/// A byte as its field shows it, "%02X".
std::string field_of_byte(int value);

/// Address that is not the chip's: writing it sets the front gamma level.
inline constexpr int kFrontGammaAddress = 0xFFF;
/// "Write(1Byte)": either frames to send, or a front gamma level to set.
struct OneByteWrite {
  Batch batch;
  std::optional<double> front_gamma_level;
};
OneByteWrite write_one_byte(int address, int value);

/// A click on a radio of the bit editor: changes bit `number` (0..7) of `byte`. At address 0 nothing is
/// changed and nothing sent.
Traffic edit_bit(int address, std::uint8_t& byte, int number, bool set);
/// What is said of a click on bits that were not read.
std::string unread_bits_text(int address);
/// What "Get Info" appends to the page's console for a byte, "%x ".
std::string bit_editor_text(std::uint8_t byte);
/// What a sensor "Write" appends.
std::string sensor_write_text(int address, int value);

enum class Access { isp_byte, isp_word, sensor };
Batch read_request(Access access, int address);
/// "0xF922" as the page's texts call a register; ISP addresses with the F that their captions have.
std::string access_name(Access access, int address);
/// The line "0xF922 = 0x12" for the answer to a read. Empty when the reply is too short for a value or
/// damaged.
std::string answer_text(Access access, int address, std::string_view reply);
/// The answer to a read as the data field shows it. Nothing for a reply that is too short or damaged.
std::optional<std::string> answer_field(Access access, std::string_view reply);
/// What is said of a read without an answer, or with one that holds no value.
std::string no_answer_text(Access access, int address);

/// Lines as those of a read for the answer to a dump of the registers `start`..`end`. Of an answer that the
/// line has damaged nothing is shown but that.
std::string dump_text(int start, int end, std::string_view reply);
/// What is said instead of an answer that did not fit into the reply buffer: it has overwritten its own
/// start.
std::string overlong_dump_text(int start, int end);

}  // namespace qv5123
