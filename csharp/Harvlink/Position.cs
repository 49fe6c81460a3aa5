using System;
using System.Collections.Generic;
using System.Linq;

namespace Harvlink
{
    /// <summary>The arm configuration: it selects one of the joint positions that have the same Cartesian pose.</summary>
    public struct Figure
    {
        /// <summary>Whether the wrist is in front of or behind the first axis.</summary>
        public FrontOrBack FrontOrBack { get; set; }

        /// <summary>Whether the elbow is up or down.</summary>
        public UpperOrLower UpperOrLower { get; set; }

        /// <summary>Whether the wrist is flipped.</summary>
        public FlipOrNoFlip FlipOrNoFlip { get; set; }

        /// <summary>The turn of axis S.</summary>
        public AxisAngle SAngle { get; set; }

        /// <summary>The turn of axis L.</summary>
        public AxisAngle LAngle { get; set; }

        /// <summary>The turn of axis U.</summary>
        public AxisAngle UAngle { get; set; }

        /// <summary>The turn of axis R.</summary>
        public AxisAngle RAngle { get; set; }

        /// <summary>The turn of axis B.</summary>
        public AxisAngle BAngle { get; set; }

        /// <summary>The turn of axis T.</summary>
        public AxisAngle TAngle { get; set; }

        /// <summary>The turn of axis E.</summary>
        public AxisAngle EAngle { get; set; }

        /// <summary>The turn of axis W.</summary>
        public AxisAngle WAngle { get; set; }
    }

    /// <summary>
    /// A position of a control group. Pulses are cut to whole ones, joint angles are in degrees. Otherwise the first three axes
    /// are X, Y and Z in millimetres, and the others Rx, Ry, Rz, Re and Rw in degrees.
    /// </summary>
    public sealed unsafe class Position
    {
        /// <summary>The number of axes that every position has; those that a group does not have are 0.</summary>
        public const int AxisCount = 8;

        private readonly double[] axes = new double[AxisCount];

        /// <summary>Makes a position from up to eight axes.</summary>
        public Position(CoordinateType type, params double[] axes)
        {
            if (axes.Length > AxisCount)
            {
                throw new ArgumentException("a position has at most 8 axes", nameof(axes));
            }
            Type = type;
            axes.CopyTo(this.axes, 0);
        }

        internal Position(Native.PositionData* record)
        {
            Type = (CoordinateType)record->coordinateType;
            Tool = record->toolNumber;
            UserCoordinate = record->userCoordinateNumber;
            Figure = new Figure
            {
                FrontOrBack = (FrontOrBack)record->figure.frontOrBack,
                UpperOrLower = (UpperOrLower)record->figure.upperOrLower,
                FlipOrNoFlip = (FlipOrNoFlip)record->figure.flipOrNoFlip,
                SAngle = (AxisAngle)record->figure.sAngle,
                LAngle = (AxisAngle)record->figure.lAngle,
                UAngle = (AxisAngle)record->figure.uAngle,
                RAngle = (AxisAngle)record->figure.rAngle,
                BAngle = (AxisAngle)record->figure.bAngle,
                TAngle = (AxisAngle)record->figure.tAngle,
                EAngle = (AxisAngle)record->figure.eAngle,
                WAngle = (AxisAngle)record->figure.wAngle,
            };
            for (int axis = 0; axis < AxisCount; ++axis)
            {
                axes[axis] = record->axes[axis];
            }
        }

        /// <summary>How the axes are to be read.</summary>
        public CoordinateType Type { get; }

        /// <summary>The eight axes.</summary>
        public IReadOnlyList<double> Axes => axes;

        /// <summary>One axis, from 0.</summary>
        public double this[int axis] => axes[axis];

        /// <summary>The tool.</summary>
        public int Tool { get; set; }

        /// <summary>The user coordinate system, used with <see cref="CoordinateType.UserCoordinate"/>.</summary>
        public int UserCoordinate { get; set; }

        /// <summary>The arm configuration.</summary>
        public Figure Figure { get; set; }

        /// <summary>The position with offsets added to its axes, beginning with the first axis.</summary>
        public Position Shifted(params double[] offsets)
        {
            var shifts = new Position(Type, offsets);
            return new Position(Type, axes.Zip(shifts.axes, (axis, shift) => axis + shift).ToArray())
            {
                Tool = Tool,
                UserCoordinate = UserCoordinate,
                Figure = Figure,
            };
        }

        /// <summary>The type and the axes.</summary>
        public override string ToString()
        {
            var invariant = System.Globalization.CultureInfo.InvariantCulture;
            return Type + " " + string.Join(" ", axes.Select(axis => axis.ToString("0.####", invariant)));
        }

        internal Native.PositionData Record()
        {
            var record = new Native.PositionData
            {
                coordinateType = (int)Type,
                toolNumber = Tool,
                userCoordinateNumber = UserCoordinate,
            };
            record.figure.frontOrBack = (int)Figure.FrontOrBack;
            record.figure.upperOrLower = (int)Figure.UpperOrLower;
            record.figure.flipOrNoFlip = (int)Figure.FlipOrNoFlip;
            record.figure.sAngle = (int)Figure.SAngle;
            record.figure.lAngle = (int)Figure.LAngle;
            record.figure.uAngle = (int)Figure.UAngle;
            record.figure.rAngle = (int)Figure.RAngle;
            record.figure.bAngle = (int)Figure.BAngle;
            record.figure.tAngle = (int)Figure.TAngle;
            record.figure.eAngle = (int)Figure.EAngle;
            record.figure.wAngle = (int)Figure.WAngle;
            for (int axis = 0; axis < AxisCount; ++axis)
            {
                record.axes[axis] = axes[axis];
            }
            return record;
        }
    }
}
