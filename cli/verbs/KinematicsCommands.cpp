#include <array>
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/KinematicsInterface.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

enum class Form { Pulse, Joint, Cartesian };

constexpr std::array<Named<Form>, 3> FormNames{
    {{"pulse", Form::Pulse}, {"joint", Form::Joint}, {"cartesian", Form::Cartesian}}};

constexpr std::array<Named<KinematicType>, 3> TypeNames{{{"system", KinematicType::KinematicFromSystem},
                                                         {"delta", KinematicType::Delta},
                                                         {"figure", KinematicType::KinematicFigure}}};

struct ConvertArguments {
    std::string group;
    std::string position;
    std::string to;
    std::string type = "figure";
    std::string previous;
};

struct Conversion {
    ControlGroupId group{};
    PositionData position;
    KinematicConversions conversion{};
    KinematicType type{};
    std::array<double, 8> previousAngles{};
};

Form FormOf(CoordinateType type) {
    return type == CoordinateType::Pulse        ? Form::Pulse
           : type == CoordinateType::JointAngle ? Form::Joint
                                                : Form::Cartesian;
}

KinematicConversions ChooseConversion(Form from, Form to) {
    if (from == to) {
        throw InputError("the position has that form already");
    }
    switch (from) {
    case Form::Pulse:
        return to == Form::Joint ? KinematicConversions::PulseToJointAngle : KinematicConversions::PulseToCartesianPos;
    case Form::Joint:
        return to == Form::Pulse ? KinematicConversions::JointAngleToPulse
                                 : KinematicConversions::JointAngleToCartesianPos;
    case Form::Cartesian:
        break;
    }
    return to == Form::Joint ? KinematicConversions::CartesianPosToJointAngle
                             : KinematicConversions::CartesianPosToPulse;
}

std::array<double, 8> ParseAngles(std::string_view text) {
    std::array<double, 8> angles{};
    std::size_t count = 0;
    for (std::string_view const item : text.empty() ? std::vector<std::string_view>{} : Split(text, ',')) {
        if (count == angles.size()) {
            throw InputError("give at most 8 previous angles");
        }
        angles.at(count++) = ParseNumber<double>(TrimBlanks(item), "angle");
    }
    return angles;
}

Conversion ParseConversion(ConvertArguments const& arguments) {
    Conversion conversion{.group = ParseGroup(arguments.group), .position = {}};
    conversion.position = ParsePosition(arguments.position, LeastAxes(conversion.group));
    conversion.conversion = ChooseConversion(FormOf(conversion.position.coordinateType),
                                             ParseName(FormNames, arguments.to, "form of a position"));
    conversion.type = ParseName(TypeNames, arguments.type, "kinematic type");
    conversion.previousAngles = ParseAngles(arguments.previous);
    return conversion;
}

StatusInfo Convert(QuorvanController& robot, Output& output, Conversion conversion) {
    PositionData result;
    KinematicsInterface& kinematics = *robot.Kinematics;
    bool const isFromCartesian = FormOf(conversion.position.coordinateType) == Form::Cartesian;
    StatusInfo status =
        isFromCartesian
            ? kinematics.ConvertPositionFromCartesian(conversion.group, conversion.position, conversion.conversion,
                                                      conversion.type, conversion.previousAngles, result)
            : kinematics.ConvertPosition(conversion.group, conversion.position, conversion.conversion, result);
    if (status.StatusCode == 0) {
        Json document{{"group", GroupName(conversion.group)}, {"position", FormatPosition(result)}};
        document.update(PositionJson(result));
        output.Show(document);
    }
    return status;
}

} // namespace

void AddKinematicsCommands(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<ConvertArguments>();
    CLI::App* const verb = app.add_subcommand("convert", "Let the controller convert a position; nothing moves");
    verb->add_option("GROUP", arguments->group, "Control group, such as R1")->type_name("GROUP")->required();
    verb->add_option("POSITION", arguments->position, "The position to convert")->required();
    verb->add_option("--to", arguments->to, "Form to convert to")->type_name(Choices(FormNames))->required();
    verb->add_option("--type", arguments->type, "How the arm configuration of a Cartesian position is chosen")
        ->type_name(Choices(TypeNames))
        ->capture_default_str();
    verb->add_option("--previous", arguments->previous, "Previous angles of a Delta robot, in the controller's unit")
        ->type_name("A,B,...");
    SetExamples(*verb, {"convert R1 pulse:0,0,0,0,0,0 --to cartesian", "convert R1 base:480,0,600,180,0,0 --to joint"},
                PositionHelp);
    verb->callback([arguments, &session] {
        session.OnConnection(Access::Observe,
                             [conversion = ParseConversion(*arguments)](QuorvanController& robot, Output& output) {
                                 return Convert(robot, output, conversion);
                             });
    });
}

} // namespace harvlink::cli
